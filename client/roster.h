// Things that are visited in the order in which they came, while any of them may come or go.
#ifndef ORV_CLIENT_ROSTER_H
#define ORV_CLIENT_ROSTER_H

#include <algorithm>
#include <cstddef>
#include <vector>

namespace orv_client {

template <class Member>
class roster {
 public:
  void add(Member& one) { members_.push_back(&one); }

  void remove(Member& one) {
    std::replace(members_.begin(), members_.end(), &one, static_cast<Member*>(nullptr));
    tidy();
  }

  [[nodiscard]] bool empty() const {
    return !any([](const Member&) { return true; });
  }

  template <class Condition>
  [[nodiscard]] bool any(Condition condition) const {
    return std::any_of(members_.begin(), members_.end(),
                       [&](const Member* one) { return one != nullptr && condition(*one); });
  }

  // Not those that come meanwhile. `visit` may destroy what it is given.
  template <class Visit>
  void for_each(Visit visit) {
    ++visits_;
    const size_t present = members_.size();
    for (size_t i = 0; i < present; ++i) {
      if (members_[i] != nullptr) {
        visit(*members_[i]);
      }
    }
    --visits_;
    tidy();
  }

 private:
  // Within a visit, places are kept.
  void tidy() {
    if (visits_ == 0) {
      std::erase(members_, nullptr);
    }
  }

  std::vector<Member*> members_;
  int visits_ = 0;
};

}  // namespace orv_client

#endif
