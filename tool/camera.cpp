#include "camera.h"

#include <utility>

namespace orvctl {
uint32_t context::timeout_ms(uint32_t usual_ms) const {
  return timeout_s ? static_cast<uint32_t>(*timeout_s * 1000) : usual_ms;
}

exit_status refuse(const orv_reply* found) {
  complain(found != nullptr ? found->message : "out of memory");
  return status_of(found);
}

camera::camera(const context& shared) {
  orv_reply* failure = nullptr;
  opened_.reset(orv_camera_open(shared.address ? shared.address->c_str() : nullptr, &failure));
  failure_.reset(failure);
}

reply camera::send(const orv_request& request, uint32_t timeout_ms) {
  return opened_ ? reply{orv_ask(opened_.get(), &request, timeout_ms)} : std::move(failure_);
}

answer camera::ask(const orv_request& request, uint32_t timeout_ms) {
  answer got{send(request, timeout_ms)};
  if (!got) {
    refuse(got.get());
  }
  return got;
}

}  // namespace orvctl
