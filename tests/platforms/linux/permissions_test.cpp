// The permission store (its file, the states of each resource, a damaged file
// set aside), the authorisation over it and the location services, all on the
// simulated dispatch: the main and writer queues run only when the test runs them.

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "platforms/linux/linux_location_services.h"
#include "platforms/linux/stored_authorization.h"
#include "platforms/sim/sim_dispatch.h"

namespace vantu::linux_platform {
namespace {

namespace fs = std::filesystem;
using State = AuthorizationState;
using Resource = ProtectedResource;

struct LinesConsole : Console {
  std::vector<std::string> lines;
  void doPrintLine(std::string_view line) override { lines.emplace_back(line); }
};

/// Holds every question until the test answers it.
struct HeldPrompt : ConsentPrompt {
  std::vector<std::pair<Resource, Answer>> asked;
  void show(Resource resource, Answer answer) override { asked.emplace_back(resource, std::move(answer)); }
  void answer(Resource resource, bool allowed) {
    auto it = std::find_if(asked.begin(), asked.end(), [&](auto& question) { return question.first == resource; });
    ASSERT_NE(it, asked.end()) << "no question up for " << toString(resource);
    auto answer = std::move(it->second);
    asked.erase(it);
    answer(allowed);
  }
};

struct Recorder : LocationManagerDelegate {
  std::vector<State> told;
  void locationManagerDidChangeAuthorization(State state) override { told.push_back(state); }
};

class Permissions : public ::testing::Test {
 protected:
  void SetUp() override {
    directory = fs::temp_directory_path() /
                ("vantu-permissions-" + std::to_string(::getpid()) + "-" +
                 ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(directory);
    store = reopen();
  }
  void TearDown() override { fs::remove_all(directory); }

  std::shared_ptr<PermissionStore> reopen() {
    dispatch->runReady();  // finish pending writes
    return PermissionStore::open(directory, dispatch->makeSerialQueue("writer"), console);
  }
  std::shared_ptr<StoredAuthorization> authorization(bool withPrompt = true) {
    return std::make_shared<StoredAuthorization>(store, dispatch, withPrompt ? prompt : nullptr);
  }

  std::shared_ptr<sim::SimDispatch> dispatch = std::make_shared<sim::SimDispatch>();
  std::shared_ptr<LinesConsole> console = std::make_shared<LinesConsole>();
  fs::path directory;
  std::shared_ptr<PermissionStore> store;
  std::shared_ptr<HeldPrompt> prompt = std::make_shared<HeldPrompt>();
};

TEST_F(Permissions, EveryStateOfEveryResourceSurvivesAReopen) {
  for (auto resource : PermissionStore::resources()) {
    for (auto state : PermissionStore::statesFor(resource)) {
      // From a different state each time, so that the write really happens.
      ASSERT_TRUE(store->set(resource, state == State::denied ? State::authorized : State::denied));
      ASSERT_TRUE(store->set(resource, state)) << toString(resource) << " " << toString(state);
      EXPECT_EQ(reopen()->state(resource), state) << toString(resource) << " " << toString(state);
    }
  }
  EXPECT_TRUE(console->lines.empty());
}

TEST_F(Permissions, StatesOfOtherResourcesAreRefusedAndChangesAreTold) {
  std::vector<std::pair<Resource, State>> told;
  auto token = store->observe([&](Resource r, State s) { told.emplace_back(r, s); });
  ASSERT_TRUE(store->set(Resource::camera, State::denied));
  const std::pair<Resource, State> refused[] = {
      {Resource::camera, State::limited}, {Resource::location, State::limited},
      {Resource::photoLibrary, State::authorizedWhenInUse}, {Resource::microphone, State::unrecognized},
  };
  for (auto [resource, state] : refused) {
    EXPECT_FALSE(store->set(resource, state)) << toString(resource) << " " << toString(state);
  }
  EXPECT_TRUE(store->set(Resource::camera, State::denied));  // unchanged: not told again
  EXPECT_EQ(told, (std::vector<std::pair<Resource, State>>{{Resource::camera, State::denied}}));
  token.reset();
  store->set(Resource::camera, State::authorized);
  EXPECT_EQ(told.size(), 1u);
}

TEST_F(Permissions, ADamagedFileIsKeptAsideAndEveryResourceStartsUndecided) {
  const std::string damaged[] = {
      "{\"version\": 1, \"permissions\": {\"camera\": \"auth",
      "[]",
      R"({"version": 2, "permissions": {"camera": "authorized"}})",
      R"({"version": 1, "permissions": {"camera": "authorizedWhenInUse"}})",
      R"({"version": 1, "permissions": {"teleporter": "authorized"}})",
      R"({"version": 1, "permissions": {"camera": 3}})",
  };
  fs::create_directories(directory);
  const auto file = directory / PermissionStore::kFileName;
  for (std::size_t i = 0; i < std::size(damaged); ++i) {
    std::ofstream(file) << damaged[i];
    console->lines.clear();
    auto reopened = reopen();
    for (auto resource : PermissionStore::resources()) EXPECT_EQ(reopened->state(resource), State::notDetermined);
    const std::string aside = file.string() + (i == 0 ? ".unreadable" : ".unreadable-" + std::to_string(i + 1));
    std::stringstream keptText;
    keptText << std::ifstream(aside).rdbuf();
    EXPECT_EQ(keptText.str(), damaged[i]);
    EXPECT_FALSE(fs::exists(file));
    ASSERT_EQ(console->lines.size(), 1u) << damaged[i];
    EXPECT_NE(console->lines[0].find("kept as " + aside), std::string::npos) << console->lines[0];
  }
  // The next decision writes a fresh, readable file.
  auto fresh = reopen();
  fresh->set(Resource::contacts, State::restricted);
  EXPECT_EQ(reopen()->state(Resource::contacts), State::restricted);
}

TEST_F(Permissions, RequestsWhileAQuestionIsUpShareItsStoredAnswerAndDecidedOnesGetNoQuestion) {
  auto authorization = this->authorization();
  std::vector<std::string> answers;
  auto record = [&](std::string who) {
    return [&answers, who](State s) { answers.push_back(who + std::string(toString(s))); };
  };
  authorization->request(Resource::camera, record("a:"));
  authorization->request(Resource::camera, record("b:"));
  authorization->request(Resource::location, record("l:"));
  authorization->request(Resource::microphone, record("m:"));
  ASSERT_EQ(prompt->asked.size(), 3u);  // one question per resource
  prompt->answer(Resource::camera, true);
  prompt->answer(Resource::location, true);
  prompt->answer(Resource::microphone, false);
  EXPECT_EQ(answers, (std::vector<std::string>{"a:authorized", "b:authorized", "l:authorizedWhenInUse", "m:denied"}));

  // Decided states (asked before, or set in the store) are answered on the main queue without a question.
  answers.clear();
  store->set(Resource::contacts, State::restricted);
  store->set(Resource::photoLibrary, State::limited);
  for (auto resource : {Resource::camera, Resource::contacts, Resource::location, Resource::microphone,
                        Resource::photoLibrary}) {
    authorization->request(resource, record(""));
  }
  EXPECT_TRUE(answers.empty());
  dispatch->runReady();
  EXPECT_EQ(answers,
            (std::vector<std::string>{"authorized", "restricted", "authorizedWhenInUse", "denied", "limited"}));
  EXPECT_TRUE(prompt->asked.empty());
}

TEST_F(Permissions, LocationManagersAreToldOfAnswersAndOfSettingsEdits) {
  int fixes = 0;
  auto services = LinuxLocationServices::make(store, authorization(), dispatch, [&]() -> std::optional<Coordinate> {
    return Coordinate{10.76 + fixes++, 106.66};
  });
  auto first = std::make_shared<Recorder>(), second = std::make_shared<Recorder>();
  auto one = services->makeManager(), two = services->makeManager(), gone = services->makeManager();
  one->setDelegate(first);
  two->setDelegate(second);
  gone->setDelegate(first);
  gone.reset();

  one->requestWhenInUseAuthorization();
  two->requestWhenInUseAuthorization();
  EXPECT_TRUE(prompt->asked.empty());  // shown after the calls return
  dispatch->runReady();
  ASSERT_EQ(prompt->asked.size(), 1u);
  prompt->answer(Resource::location, true);
  EXPECT_EQ(services->authorizationState(), State::authorizedWhenInUse);
  one->requestWhenInUseAuthorization();  // decided: nothing is asked
  dispatch->runReady();
  EXPECT_TRUE(prompt->asked.empty());

  store->set(Resource::location, State::denied);  // the settings page
  const std::vector<State> expected{State::authorizedWhenInUse, State::denied};
  EXPECT_EQ(first->told, expected);
  EXPECT_EQ(second->told, expected);
  EXPECT_EQ(one->location(), (Coordinate{10.76, 106.66}));
  EXPECT_EQ(two->location(), (Coordinate{11.76, 106.66}));  // read afresh each time
}

TEST_F(Permissions, WithoutAPromptUndecidedRequestsAreRefusedAndNothingIsStored) {
  auto authorization = this->authorization(false);
  std::optional<State> answer;
  authorization->request(Resource::speechRecognition, [&](State s) { answer = s; });
  dispatch->runReady();
  EXPECT_EQ(answer, State::denied);
  EXPECT_EQ(reopen()->state(Resource::speechRecognition), State::notDetermined);

  // The location services tell a refusal too, and without a position source there is no fix.
  auto services = LinuxLocationServices::make(store, authorization, dispatch, nullptr);
  auto recorder = std::make_shared<Recorder>();
  auto manager = services->makeManager();
  manager->setDelegate(recorder);
  manager->requestWhenInUseAuthorization();
  dispatch->runReady();
  EXPECT_EQ(recorder->told, (std::vector<State>{State::denied}));
  EXPECT_EQ(services->authorizationState(), State::notDetermined);
  EXPECT_EQ(manager->location(), std::nullopt);
}

}  // namespace
}  // namespace vantu::linux_platform
