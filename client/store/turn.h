// A program's turn to send commands, and commands within it.
#ifndef ORV_CLIENT_STORE_TURN_H
#define ORV_CLIENT_STORE_TURN_H

#include <functional>
#include <memory>
#include <string>

#include "../commands.h"
#include "../ending.h"
#include "../loop.h"
#include "lock_file.h"

namespace orv_client::store {

class exchange;

// One operation at a time. Callbacks never come before the function returns that names them, and
// may destroy this. When it is destroyed, what is under way is given up (an injection that is
// unanswered is withdrawn), and the turn ends.
class turn {
 public:
  // `directory` is for messages; the file has to live as long as this.
  turn(std::string directory, lock_file& file);
  turn(const turn&) = delete;
  turn& operator=(const turn&) = delete;
  ~turn();

  using taken_fn = std::function<void(bool taken)>;
  using ended_fn = std::function<void(ending)>;

  // Takes the turn at once where it is free.
  [[nodiscard]] bool try_take();
  void take(time_limit limit, taken_fn done);
  void release();
  [[nodiscard]] bool held() const { return held_; }

  // Whether no late answer of an earlier command can come any more.
  [[nodiscard]] bool settled() const;
  // Makes it so, by a query, which overwrites the packet.
  void settle(time_limit limit, ended_fn done);

  // Sends the command and waits for its own answer: not one that was in the store before, nor a
  // monitor's tick, nor, when settled, the late one of an earlier command. The ending is as the
  // user gets it: ORV_RAN also with result -1.
  void ask(command sent, time_limit limit, ended_fn done);

  // Whether what ask was given has been written by now.
  [[nodiscard]] bool sent() const;

 private:
  void start(command sent, bool settles, time_limit limit, ended_fn done);

  std::string directory_;
  lock_file& file_;
  bool held_ = false;
  std::unique_ptr<claim> claim_;
  std::unique_ptr<exchange> exchange_;
};

// Endings that the store's operations share; all name the directory. A time as they name it: "5 s".
std::string seconds(time_limit limit);
ending busy(const std::string& directory, time_limit limit);
ending watched(const std::string& directory);
ending store_failed(const std::string& directory);

}  // namespace orv_client::store

#endif
