#include "vantu/platform/authorization.h"

#include <array>
#include <utility>

namespace vantu {
namespace {

constexpr std::array<std::pair<ProtectedResource, std::string_view>, 6> kResourceNames{{
    {ProtectedResource::camera, "camera"},
    {ProtectedResource::photoLibrary, "photoLibrary"},
    {ProtectedResource::location, "location"},
    {ProtectedResource::microphone, "microphone"},
    {ProtectedResource::contacts, "contacts"},
    {ProtectedResource::speechRecognition, "speechRecognition"},
}};

constexpr std::array<std::pair<AuthorizationState, std::string_view>, 7> kStateNames{{
    {AuthorizationState::notDetermined, "notDetermined"},
    {AuthorizationState::restricted, "restricted"},
    {AuthorizationState::denied, "denied"},
    {AuthorizationState::authorized, "authorized"},
    {AuthorizationState::authorizedWhenInUse, "authorizedWhenInUse"},
    {AuthorizationState::limited, "limited"},
    {AuthorizationState::unrecognized, "unrecognized"},
}};

template <class Enum, std::size_t N>
std::string_view nameOf(const std::array<std::pair<Enum, std::string_view>, N>& table, Enum value) {
  for (const auto& [v, name] : table)
    if (v == value) return name;
  return {};
}

template <class Enum, std::size_t N>
std::optional<Enum> valueNamed(const std::array<std::pair<Enum, std::string_view>, N>& table,
                               std::string_view name) {
  for (const auto& [v, n] : table)
    if (n == name) return v;
  return std::nullopt;
}

}  // namespace

std::string_view toString(ProtectedResource resource) { return nameOf(kResourceNames, resource); }
std::optional<ProtectedResource> protectedResourceNamed(std::string_view name) {
  return valueNamed(kResourceNames, name);
}
std::string_view toString(AuthorizationState state) { return nameOf(kStateNames, state); }
std::optional<AuthorizationState> authorizationStateNamed(std::string_view name) {
  return valueNamed(kStateNames, name);
}

}  // namespace vantu
