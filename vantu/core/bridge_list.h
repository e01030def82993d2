#pragma once
// A family of bridges as a type list: each handler type names its bridge in
// `kBridgeName`. A family header declares its list; `registerAllBridges`
// adds every family's list to a registry.

namespace vantu {

template <class... Handlers>
struct BridgeList {};

}  // namespace vantu
