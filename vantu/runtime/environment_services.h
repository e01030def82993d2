#pragma once
// Connects the environment's store and keyboard operations to the
// subsystems that do the work (see vantu/core/laizaxlu_services.h).

namespace vantu {

/// Connects Laizaxlu's sandbox and keyboard-fixer operations to the shared
/// key-value store and the keyboard-offset fixer. Idempotent; programs call
/// it once at start-up, after installing the platform.
void connectEnvironmentServices();

}  // namespace vantu
