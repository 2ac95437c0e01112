#include "camera.h"

#include <orv/protocol.h>

#include <algorithm>
#include <utility>

namespace orvctl {
namespace {

struct status_row {
  orv_outcome outcome;
  orv_why why;
  exit_status status;
};

// An answer's status is its result's.
constexpr status_row statuses[] = {
    {ORV_RAN, ORV_WHY_BAD_ANSWER, exit_status::failure},
    {ORV_NOT_RUN, ORV_WHY_BAD_REQUEST, exit_status::usage},
    {ORV_NOT_RUN, ORV_WHY_BAD_ADDRESS, exit_status::usage},
    {ORV_NOT_RUN, ORV_WHY_UNKNOWN_SCHEME, exit_status::usage},
    {ORV_NOT_RUN, ORV_WHY_SECOND_STORE, exit_status::usage},
    {ORV_NOT_RUN, ORV_WHY_NO_CAMERA, exit_status::usage},
    {ORV_NOT_RUN, ORV_WHY_STORE_REFUSED, exit_status::usage},
    {ORV_NOT_RUN, ORV_WHY_STORE_FAILED, exit_status::usage},
    {ORV_NOT_RUN, ORV_WHY_BUSY, exit_status::no_answer},
    {ORV_NOT_RUN, ORV_WHY_WATCHED, exit_status::no_answer},
    {ORV_NOT_RUN, ORV_WHY_IN_CALLBACK, exit_status::failure},
    {ORV_NOT_RUN, ORV_WHY_CLOSED, exit_status::no_answer},
    {ORV_NOT_RUN, ORV_WHY_NO_LOG, exit_status::usage},
    {ORV_NOT_RUN, ORV_WHY_NO_MEMORY, exit_status::failure},
    {ORV_NOT_RUN, ORV_WHY_NO_ANSWER, exit_status::no_answer},
    {ORV_MAY_HAVE_RUN, ORV_WHY_NO_MEMORY, exit_status::failure},
    {ORV_MAY_HAVE_RUN, ORV_WHY_NO_ANSWER, exit_status::no_answer},
    {ORV_MAY_HAVE_RUN, ORV_WHY_OVERWRITTEN, exit_status::no_answer},
    {ORV_MAY_HAVE_RUN, ORV_WHY_CLOSED, exit_status::no_answer},
};

constexpr bool has_row(int why) {
  return std::any_of(std::begin(statuses), std::end(statuses),
                     [why](const status_row& one) { return one.why == why; });
}

constexpr bool has_rows_up_to(int why) {
  return why == ORV_WHY_NONE || (has_row(why) && has_rows_up_to(why - 1));
}
static_assert(has_rows_up_to(ORV_WHY_BAD_ANSWER));

}  // namespace

uint32_t context::timeout_ms(uint32_t usual_ms) const {
  return timeout_s ? static_cast<uint32_t>(*timeout_s * 1000) : usual_ms;
}

exit_status status_of_result(int32_t result) {
  return result == ORV_RESULT_OK ? exit_status::success : exit_status::failure;
}

exit_status status_of(const orv_reply* found) {
  if (found == nullptr) {
    return exit_status::failure;
  }
  if (found->why == ORV_WHY_NONE) {
    return status_of_result(found->result);
  }
  const auto* row =
      std::find_if(std::begin(statuses), std::end(statuses), [found](const status_row& one) {
        return one.outcome == found->outcome && one.why == found->why;
      });
  return row != std::end(statuses) ? row->status : exit_status::failure;
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
