// Requests through the library, to an agent in its host.

#include <dlfcn.h>
#include <fcntl.h>
#include <glib.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "camera_host.h"

namespace {

using orv_test::ask;
using orv_test::background;
using orv_test::camera_handle;
using orv_test::ClientTest;
using orv_test::reply_handle;
using orv_test::run_until;
using testing::ElementsAre;
using testing::HasSubstr;

int iterations = 0;

const orv_request key_tap = orv_key_request(ORV_KEY_TAP, "KEY_MENU");

// How many keys the agent was told to press.
long keys_handled() {
  const std::string log = orv_test::run({"dlogutil", "-d", "ORV"}).out;
  long found = 0;
  for (size_t at = 0; (at = log.find("orv_event_key_handler+", at)) != std::string::npos; ++at) {
    ++found;
  }
  return found;
}

std::string shown(const orv_reply& reply) {
  return std::to_string(reply.outcome) + " " + std::to_string(reply.why);
}

void note(const orv_reply* reply, void* replies) {
  static_cast<std::vector<std::string>*>(replies)->push_back(shown(*reply));
}

const std::string ran = "0 0";

}  // namespace

// What every iteration of the main context goes through, the library's own included.
extern "C" gboolean g_main_context_iteration(GMainContext* context, gboolean may_block) {
  ++iterations;
  using function = gboolean (*)(GMainContext*, gboolean);
  static const auto next = reinterpret_cast<function>(dlsym(RTLD_NEXT, "g_main_context_iteration"));
  return next(context, may_block);
}

namespace {

TEST_F(ClientTest, ReadsTheAnswersOfTheQueries) {
  const reply_handle who = ask(camera_, orv_identity_request());
  ASSERT_NE(who->identity, nullptr) << who->message;
  EXPECT_STREQ(who->identity->firmware, "LUMEN-ONE_1.04.2_20260830");
  EXPECT_EQ(who->identity->byte_order, 240);
  EXPECT_STREQ(who->message, "");
  const reply_handle memory = ask(camera_, orv_memory_request());
  ASSERT_NE(memory->memory, nullptr) << memory->message;
  EXPECT_GT(memory->memory->total_bytes, 0U);
  const reply_handle stacks = ask(camera_, orv_threads_request(), 30000);
  ASSERT_NE(stacks->threads, nullptr) << stacks->message;
  ASSERT_GT(stacks->threads->listed, 0U);
  EXPECT_GT(stacks->threads->list[0].tid, 0);
}

TEST_F(ClientTest, PressesNoKeyThatWasWithdrawn) {
  host_->signal(SIGSTOP);
  const reply_handle frozen = ask(camera_, key_tap, 100);
  EXPECT_EQ(shown(*frozen), "2 15");
  EXPECT_THAT(frozen->message, HasSubstr("no answer in 0.1 s: waited for memory/orv/result to be "
                                         "written after command 0x104 (event) in /"));
  // What would settle it is not answered either: this one is never written.
  const reply_handle unsettled = ask(camera_, key_tap, 100);
  EXPECT_EQ(shown(*unsettled), "1 15") << unsettled->message;
  host_->signal(SIGCONT);
  EXPECT_EQ(shown(*ask(camera_, orv_identity_request())), ran);
  EXPECT_EQ(keys_handled(), 0);
}

// An agent that was frozen is told of each command that it missed, and looks each time at the one
// that is there by then.
TEST_F(ClientTest, PressesAKeyOnceWhenTheHostWakes) {
  host_->signal(SIGSTOP);
  for (int i = 0; i < 20; ++i) {
    ask(camera_, orv_memory_request(), 10);
  }
  std::vector<std::string> replies;
  orv_send(camera_.get(), &key_tap, 5000, note, &replies);
  run_until([&] { return !replies.empty(); }, 50);
  host_->signal(SIGCONT);
  EXPECT_TRUE(run_until([&] { return !replies.empty(); }));
  EXPECT_THAT(replies, ElementsAre(ran));
  EXPECT_EQ(shown(*ask(camera_, orv_identity_request())), ran);
  EXPECT_EQ(keys_handled(), 1);
}

TEST_F(ClientTest, SendsWithoutRunningTheMainContext) {
  std::vector<std::string> replies;
  const orv_request query = orv_identity_request();
  iterations = 0;
  for (int i = 0; i < 10; ++i) {
    orv_send(camera_.get(), &query, 5000, note, &replies);
  }
  EXPECT_EQ(iterations, 0);
  EXPECT_THAT(replies, testing::IsEmpty()) << "called back before the function returned";
  GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
  const auto end = [](gpointer data) -> gboolean {
    g_main_loop_quit(static_cast<GMainLoop*>(data));
    return G_SOURCE_REMOVE;
  };
  g_timeout_add(500, end, loop);
  g_main_loop_run(loop);
  g_main_loop_unref(loop);
  EXPECT_EQ(iterations, 0);
  EXPECT_EQ(std::count(replies.begin(), replies.end(), ran), 10);
}

TEST_F(ClientTest, ServesSeveralCamerasOfOneStore) {
  const camera_handle other{orv_camera_open(orv_default_address(), nullptr)};
  ASSERT_TRUE(other);
  std::vector<std::string> replies;
  const orv_request query = orv_memory_request();
  for (int i = 0; i < 20; ++i) {
    orv_send((i % 2 == 0 ? camera_ : other).get(), &query, 5000, note, &replies);
  }
  EXPECT_TRUE(run_until([&] { return replies.size() == 20; }));
  EXPECT_EQ(std::count(replies.begin(), replies.end(), ran), 20);
}

TEST_F(ClientTest, SendsACamerasRequestsInTheirOrder) {
  static std::vector<std::string> order;
  order.clear();
  const auto note_text = [](const orv_reply* reply, void* /*none*/) {
    order.emplace_back(reply->text != nullptr ? reply->text : "");
  };
  const orv_request first = orv_memory_request();
  const orv_request last = orv_identity_request();
  orv_send(camera_.get(), &first, 5000, note_text, nullptr);
  orv_send(camera_.get(), &key_tap, 5000, note_text, nullptr);
  orv_send(camera_.get(), &last, 5000, note_text, nullptr);
  EXPECT_TRUE(run_until([] { return order.size() == 3; }));
  EXPECT_THAT(order, ElementsAre(HasSubstr("1,1,"), "", HasSubstr("LUMEN-ONE")));
}

TEST_F(ClientTest, AnswersCallsOfAnyThread) {
  const auto ask_in_threads = [this] {
    std::vector<std::string> replies(4);
    std::vector<std::thread> threads;
    for (std::string& reply : replies) {
      threads.emplace_back([&] {
        for (int i = 0; i < 20; ++i) {
          const camera_handle own{orv_camera_open(nullptr, nullptr)};
          reply = shown(*ask(own, orv_memory_request()));
        }
      });
    }
    for (std::thread& one : threads) {
      one.join();
    }
    return replies;
  };
  {
    SCOPED_TRACE("no thread runs the main context");
    EXPECT_THAT(ask_in_threads(), ElementsAre(ran, ran, ran, ran));
  }
  SCOPED_TRACE("another thread runs it");
  GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
  std::thread runs{[loop] { g_main_loop_run(loop); }};
  EXPECT_THAT(ask_in_threads(), ElementsAre(ran, ran, ran, ran));
  g_main_loop_quit(loop);
  runs.join();
  g_main_loop_unref(loop);
}

TEST_F(ClientTest, RefusesToWaitWithinACallback) {
  static orv_camera* camera;
  static reply_handle within;
  static camera_handle opened;
  camera = camera_.get();
  const auto wait = [](const orv_reply* /*reply*/, void* /*none*/) {
    within.reset(orv_ask(camera, &key_tap, 5000));
    opened.reset(orv_camera_open(nullptr, nullptr));
  };
  orv_send(camera, &key_tap, 5000, wait, nullptr);
  EXPECT_TRUE(run_until([] { return within != nullptr; }));
  EXPECT_EQ(shown(*within), "1 11") << within->message;
  EXPECT_TRUE(opened) << "opening waits for no callback";
  within.reset();
  opened.reset();
}

TEST_F(ClientTest, EndsWhatIsInFlightWhenItIsClosed) {
  host_->signal(SIGSTOP);
  std::vector<std::string> replies;
  const orv_request bad = orv_touch_request(ORV_TOUCH_PRESS, 40000, 0);
  orv_send(camera_.get(), &key_tap, 5000, note, &replies);
  orv_send(camera_.get(), &key_tap, 5000, note, &replies);
  orv_send(camera_.get(), &bad, 5000, note, &replies);
  run_until([] { return orv_test::number_at(VCONFKEY_ORV_COMMAND) == ORV_COMMAND_EVENT; }, 1000);
  camera_.reset();
  EXPECT_THAT(replies, ElementsAre("2 12", "1 12", "1 12"));
  host_->signal(SIGCONT);
  camera_.reset(orv_camera_open(nullptr, nullptr));
  EXPECT_EQ(shown(*ask(camera_, orv_identity_request())), ran);
  EXPECT_EQ(keys_handled(), 0) << "the first one was sent and not withdrawn";
}

TEST_F(ClientTest, ClosesWithinACallback) {
  std::vector<std::string> replies;
  struct closing {
    orv_camera* camera;
    std::vector<std::string>* replies;
  } within{camera_.release(), &replies};
  const auto close = [](const orv_reply* reply, void* data) {
    auto* one = static_cast<closing*>(data);
    orv_camera_close(one->camera);
    note(reply, one->replies);
  };
  orv_send(within.camera, &key_tap, 5000, close, &within);
  orv_send(within.camera, &key_tap, 5000, note, &replies);
  EXPECT_TRUE(run_until([&] { return replies.size() == 2; }));
  EXPECT_EQ(replies, (std::vector<std::string>{ran, "1 12"}));
}

TEST_F(ClientTest, EndsInTimeWhileAnotherProcessHasTheTurn) {
  const background other{[]() -> int {
    const std::string path = orv_test::store_directory() + "/.orv-tools";
    const int file = open(path.c_str(), O_RDWR);
    struct flock turn {};
    turn.l_type = F_WRLCK;
    turn.l_len = 1;
    fcntl(file, F_OFD_SETLK, &turn);
    return pause();
  }};
  const reply_handle* busy = nullptr;
  reply_handle last;
  ASSERT_TRUE(orv_test::eventually([&] {
    last = ask(camera_, orv_memory_request(), 50);
    busy = &last;
    return (*busy)->outcome == ORV_NOT_RUN;
  }));
  EXPECT_EQ(shown(*last), "1 9");
  EXPECT_EQ(last->message, "another orvctl has been busy on " + orv_test::store_directory() +
                               " for 0.05 s; try again");
  other.signal(SIGKILL);
  EXPECT_EQ(shown(*ask(camera_, orv_memory_request())), ran) << "its turn ends with it";
}

TEST_F(ClientTest, SaysWhatIsWrongWithARequest) {
  EXPECT_EQ(shown(*ask(camera_, orv_memory_request(), 0)), "1 1");
  EXPECT_EQ(shown(*ask(camera_, orv_touch_request(ORV_TOUCH_PRESS, 0, -32769))), "1 1");
  EXPECT_EQ(shown(*ask(camera_, {0x999, {}, nullptr}, 50)), "2 15");
  vconf_set_str(VCONFKEY_ORV_RESULT_DATA, "");
  const reply_handle well = ask(camera_, orv_health_request());
  EXPECT_EQ(well->result, -1) << "the application does not run here";
  EXPECT_STREQ(well->message, "the agent answered -1");
}

}  // namespace
