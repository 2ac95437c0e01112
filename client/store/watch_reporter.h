// What a watch reports to its user: items with the names of their threads, and what happened.
#ifndef ORV_CLIENT_STORE_WATCH_REPORTER_H
#define ORV_CLIENT_STORE_WATCH_REPORTER_H

#include <orv/client.h>

#include <map>
#include <string>
#include <vector>

#include "../carrier.h"
#include "packet_items.h"

namespace orv_client::store {

class watch_reporter {
 public:
  watch_reporter(carried_event_fn on_event, void* user_data)
      : on_event_{on_event}, user_data_{user_data} {}

  void started() { report({ORV_WATCH_STARTED, nullptr, packet_bytes_, "", nullptr}); }
  void items(std::vector<packet_item> news, size_t packet_bytes);
  void ticked() { report({ORV_WATCH_TICKED, nullptr, packet_bytes_, "", nullptr}); }
  void gap();
  void garbled(const std::string& packet);
  void ended(const orv_reply& reply);

  // Reports nothing any more. May be called within a report.
  void be_silent() { on_event_ = nullptr; }

  // Whether a thread was reported whose name is not known.
  [[nodiscard]] bool lacks_names() const { return lacks_names_; }
  // From the text of a threads query. A thread that is not there ended before it was asked for.
  void set_names(const std::string& answer);

 private:
  void report(const orv_watch_event& event) const;
  const char* name_of(int32_t tid);

  carried_event_fn on_event_;
  void* user_data_;
  size_t packet_bytes_ = 0;
  std::map<int32_t, std::string> names_;
  bool lacks_names_ = false;
};

}  // namespace orv_client::store

#endif
