#include "platforms/sim/runner_commands.h"

#include <memory>
#include <set>

#include "platforms/sim/keyboard_runner_command.h"
#include "platforms/sim/pickers_runner_command.h"
#include "vantu/platform/activity_view_controller.h"
#include "vantu/platform/alert_controller.h"

namespace vantu::sim {
namespace {

/// Every controller of type T being presented from `vc` or below it
/// (children and presentation chains), each once.
template <class T>
void collectShown(const std::shared_ptr<ViewController>& vc, std::vector<std::shared_ptr<T>>& out,
                  std::set<const ViewController*>& seen) {
  if (!vc || !seen.insert(vc.get()).second) return;
  if (auto shown = std::dynamic_pointer_cast<T>(vc); shown && shown->presentingViewController()) out.push_back(shown);
  for (const auto& child : vc->children()) collectShown(child, out, seen);
  collectShown(vc->presentedViewController(), out, seen);
}

/// The one controller of type T shown on the screen named by the command's
/// optional "screen", or anywhere (key window first, then every screen).
/// `what` names it in errors ("alert").
template <class T>
std::optional<std::string> findShown(HeadlessRunner& runner, const Dict& command, std::string_view what,
                                     std::shared_ptr<T>& found) {
  SimDevice& device = runner.device();
  std::vector<std::shared_ptr<T>> shown;
  std::set<const ViewController*> seen;
  if (const Value* screen = command.find("screen")) {
    const std::string* name = screen->asString();
    if (!name) return std::string("\"screen\" must be a screen name");
    auto from = device.screen(*name);
    if (!from) return "no screen named \"" + *name + "\"";
    collectShown(from, shown, seen);
    if (shown.empty()) return "no " + std::string(what) + " is shown on screen \"" + *name + "\"";
  } else {
    if (auto window = device.application().keyWindow()) collectShown(window->rootViewController(), shown, seen);
    for (const auto& screen : device.screens()) collectShown(screen, shown, seen);
    if (shown.empty()) return "no " + std::string(what) + " is shown";
  }
  if (shown.size() > 1) return "more than one " + std::string(what) + " is shown: name the \"screen\" it is shown on";
  found = std::move(shown.front());
  return std::nullopt;
}

/// {"tap": {"button": TITLE} | {"index": N}, "screen": NAME (optional)}:
/// the user taps a button of the alert that is shown.
std::optional<std::string> tapCommand(HeadlessRunner& runner, const Dict& line, Dict& out) {
  const Dict* tap = line.find("tap")->asDict();
  if (!tap) return std::string("\"tap\" must be an object with \"button\" or \"index\"");
  const Value* button = tap->find("button");
  const Value* index = tap->find("index");
  if ((button == nullptr) == (index == nullptr)) return std::string("\"tap\" needs exactly one of \"button\" and \"index\"");
  if (button && !button->isString()) return std::string("\"tap\": \"button\" must be a button title");
  if (index && (!index->isInt() || *index->asInt() < 0)) return std::string("\"tap\": \"index\" must be an integer >= 0");

  std::shared_ptr<AlertController> alert;
  if (auto error = findShown(runner, *tap, "alert", alert)) return "tap: " + *error;
  const auto& actions = alert->actions();
  std::size_t which = 0;
  if (button) {
    const std::string& title = *button->asString();
    while (which < actions.size() && actions[which].title() != title) ++which;  // the first with that title
    if (which == actions.size()) return "tap: the alert has no button \"" + title + "\"";
  } else {
    which = static_cast<std::size_t>(*index->asInt());
    if (which >= actions.size()) return "tap: the alert has no button at index " + std::to_string(which);
  }

  out.set("tapped", Dict{{"button", actions[which].title()}, {"index", static_cast<std::int64_t>(which)}});
  // A tap is a user event: it reaches the alert on the main queue.
  runner.device().dispatch().main()->async([alert, which] { alert->tapAction(which); });
  out.set("settled", runner.settle());
  return std::nullopt;
}

/// {"closeShareSheet": {"screen": NAME (optional)}}: the user closes the
/// share sheet that is shown (shares or cancels; the library is not told
/// which), and it dismisses itself, animated.
std::optional<std::string> closeShareSheetCommand(HeadlessRunner& runner, const Dict& line, Dict& out) {
  const Dict* close = line.find("closeShareSheet")->asDict();
  if (!close) return std::string("\"closeShareSheet\" must be an object");
  std::shared_ptr<ActivityViewController> sheet;
  if (auto error = findShown(runner, *close, "share sheet", sheet)) return "closeShareSheet: " + *error;
  out.set("closed", "shareSheet");
  runner.device().dispatch().main()->async([sheet] { sheet->dismiss(true); });
  out.set("settled", runner.settle());
  return std::nullopt;
}

/// {"answerPrompt": {"resource": NAME, "state": STATE}}: the user answers
/// the held system prompt for a resource (see the "permissions" section).
std::optional<std::string> answerPromptCommand(HeadlessRunner& runner, const Dict& line, Dict& out) {
  const Dict* answer = line.find("answerPrompt")->asDict();
  const Value* resourceValue = answer ? answer->find("resource") : nullptr;
  const Value* stateValue = answer ? answer->find("state") : nullptr;
  const std::string* resourceName = resourceValue ? resourceValue->asString() : nullptr;
  const std::string* stateName = stateValue ? stateValue->asString() : nullptr;
  auto resource = resourceName ? protectedResourceNamed(*resourceName) : std::nullopt;
  auto state = stateName ? authorizationStateNamed(*stateName) : std::nullopt;
  if (!resource || !state)
    return std::string("\"answerPrompt\" needs a \"resource\" name and a \"state\" name");
  if (!runner.device().authorization().answerHeldPrompt(*resource, *state))
    return "answerPrompt: no prompt for \"" + *resourceName + "\" is up";
  out.set("answered", Dict{{"resource", *resourceName}, {"state", *stateName}});
  out.set("settled", runner.settle());
  return std::nullopt;
}

/// {"answerAuthentication": {"success": true | false} | {"error": CODE}}: the
/// user answers the device-owner authentication sheet that is held up.
std::optional<std::string> answerAuthenticationCommand(HeadlessRunner& runner, const Dict& line, Dict& out) {
  const Value& given = *line.find("answerAuthentication");
  AuthenticationAnswer answer;
  if (auto error = readAuthenticationAnswer(given, answer)) return "\"answerAuthentication\": " + *error;
  if (!runner.device().deviceOwnerAuthentication().answerHeldSheets(answer))
    return std::string("answerAuthentication: no authentication sheet is up");
  out.set("answered", given);
  out.set("settled", runner.settle());
  return std::nullopt;
}

}  // namespace

std::vector<HeadlessRunner::LineCommand> familyRunnerCommands() {
  return {{"tap", R"({"tap": {"button": "Ok"}})", tapCommand},
          {"closeShareSheet", R"({"closeShareSheet": {}})", closeShareSheetCommand},
          {"keyboard", R"({"keyboard": "show", "scrollTo": {"view": "shop.web.scrollView", "offset": [0, 320]}})",
           keyboardCommand},
          {"answerPrompt", R"({"answerPrompt": {"resource": "camera", "state": "denied"}})", answerPromptCommand},
          {"answerAuthentication", R"({"answerAuthentication": {"success": true}})", answerAuthenticationCommand},
          {"pickImage", R"({"pickImage": "files/photo.png"})", pickImageCommand},
          {"pickDocuments", R"({"pickDocuments": ["files/a.pdf"]})", pickDocumentsCommand},
          {"cancelPicker", R"({"cancelPicker": {}})", cancelPickerCommand}};
}

}  // namespace vantu::sim
