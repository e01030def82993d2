#include "platforms/sim/sim_pickers_input.h"

namespace vantu::sim {
namespace {

// "cancel" and "hold" as actions; nullopt for any other value.
std::optional<SimPickers::Action> actionWord(const Value& value, bool allowHold) {
  const std::string* word = value.asString();
  if (word && *word == "cancel") return SimPickers::Action::cancel;
  if (word && allowHold && *word == "hold") return SimPickers::Action::hold;
  return std::nullopt;
}

}  // namespace

std::optional<std::string> readImageChoice(const Value& value, bool allowHold, SimPickers::ImageChoice& out) {
  SimPickers::ImageChoice choice;
  if (auto action = actionWord(value, allowHold)) {
    choice.action = *action;
  } else if (const std::string* file = value.asString()) {
    choice.action = SimPickers::Action::pick;
    choice.file = *file;
  } else if (const Dict* d = value.asDict()) {
    for (const auto& [key, field] : *d) {
      const std::string name = key.text();
      if (name == "file" && field.isString()) {
        choice.file = *field.asString();
      } else if (name == "url" && (field.isString() || field.isNull())) {
        choice.url = field.isNull() ? std::optional<std::string>() : std::optional<std::string>(*field.asString());
      } else {
        return "\"" + name + "\" is not a field of an image choice (\"file\": NAME, \"url\": URL or null)";
      }
    }
    if (choice.file.empty()) return std::string("an image choice needs a \"file\"");
    choice.action = SimPickers::Action::pick;
  } else {
    return std::string(allowHold ? "must be \"cancel\", \"hold\", a file name or {\"file\", \"url\"}"
                                 : "must be \"cancel\", a file name or {\"file\", \"url\"}");
  }
  out = std::move(choice);
  return std::nullopt;
}

std::optional<std::string> readDocumentChoice(const Value& value, bool allowHold, SimPickers::DocumentChoice& out) {
  SimPickers::DocumentChoice choice;
  if (auto action = actionWord(value, allowHold)) {
    choice.action = *action;
  } else if (const Array* files = value.asArray()) {
    for (const Value& file : *files) {
      if (!file.isString()) return std::string("the document list must hold file names");
      choice.files.push_back(*file.asString());
    }
    choice.action = SimPickers::Action::pick;
  } else {
    return std::string(allowHold ? "must be \"cancel\", \"hold\" or a list of file names"
                                 : "must be \"cancel\" or a list of file names");
  }
  out = std::move(choice);
  return std::nullopt;
}

}  // namespace vantu::sim
