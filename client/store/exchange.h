// One command, written in a turn, and its answer.
#ifndef ORV_CLIENT_STORE_EXCHANGE_H
#define ORV_CLIENT_STORE_EXCHANGE_H

#include <functional>
#include <optional>
#include <string>

#include "../commands.h"
#include "../ending.h"
#include "../loop.h"
#include "answer_filter.h"
#include "hub.h"
#include "lock_file.h"

namespace orv_client::store {

class exchange {
 public:
  using ended_fn = std::function<void(ending)>;

  // `ended` may destroy this. `earlier` answers are outstanding. A query that `settles` waits for
  // them as well, as far as they come: an agent that was frozen answers the query once for each
  // command that it missed, and a command written among these answers would run more than once.
  exchange(std::string directory, lock_file& file, command sent, int earlier, bool settles,
           time_limit limit, ended_fn ended);
  exchange(const exchange&) = delete;
  exchange& operator=(const exchange&) = delete;
  // Gives up what is under way.
  ~exchange();

  // Whether the command key has been written.
  [[nodiscard]] bool sent() const { return phase_ >= phase::waiting; }

 private:
  enum class phase { preparing, joining, waiting, answered, over };

  void write_when_quiet();
  void write_command();
  void hear(change what);
  void filter(change what);
  void note_answer(answer found);
  void give_up();
  void withdraw();
  void finish(ending how);
  [[nodiscard]] ending answered();

  std::string directory_;
  lock_file& file_;
  command sent_;
  int outstanding_;  // this command's answer included
  int answers_wanted_;
  time_limit limit_;
  ended_fn ended_;
  answer_filter filter_;
  std::optional<answer> answer_;
  bool overwritten_ = false;
  phase phase_ = phase::preparing;
  listener heard_;
  source next_;
  source deadline_;
};

}  // namespace orv_client::store

#endif
