#include "vantu/bridges/host/track_event_handler.h"

#include "vantu/bridges/host/host_delegate_lookup.h"

namespace vantu {

void TrackEventHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto delegate = host::hostDelegateFor(params);
  if (!delegate) return;
  delegate->trackCustomEventFor(std::move(params.data),
                                host::answerSuccessWithData(params.callback, "failed to track Event"));
}

}  // namespace vantu
