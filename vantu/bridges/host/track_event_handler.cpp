#include "vantu/bridges/host/track_event_handler.h"

#include "vantu/bridges/host/host_delegate_lookup.h"
#include "vantu/core/h5_answers.h"

namespace vantu {

void TrackEventHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto delegate = host::hostDelegateFor(params);
  if (!delegate) return;
  delegate->trackCustomEventFor(std::move(params.data),
                                answerSuccessWithData(params.callback, "failed to track Event"));
}

}  // namespace vantu
