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

const orv_request key_press = orv_key_request(ORV_KEY_PRESS, "KEY_MENU");

// How often the agent's log has the text, since the first test.
long logged(const std::string& text) {
  const std::string log = orv_test::run({"dlogutil", "-d", "ORV"}).out;
  long found = 0;
  for (size_t at = 0; (at = log.find(text, at)) != std::string::npos; ++at) {
    ++found;
  }
  return found;
}

long keys_handled() {
  return logged("orv_event_key_handler+");
}

std::string shown(orv_outcome outcome, orv_why why) {
  return std::to_string(outcome) + " " + std::to_string(why);
}

std::string shown(const orv_reply& reply) {
  return shown(reply.outcome, reply.why);
}

void note(const orv_reply* reply, void* replies) {
  static_cast<std::vector<std::string>*>(replies)->push_back(shown(*reply));
}

const std::string ran = shown(ORV_RAN, ORV_WHY_NONE);
const std::string unanswered = shown(ORV_MAY_HAVE_RUN, ORV_WHY_NO_ANSWER);
const std::string closed = shown(ORV_NOT_RUN, ORV_WHY_CLOSED);

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
  const long before = keys_handled();
  const long commands = logged("orv_handler(): key");
  host_->signal(SIGSTOP);
  const reply_handle frozen = ask(camera_, key_press, 100);
  EXPECT_EQ(shown(*frozen), unanswered);
  EXPECT_THAT(frozen->message, HasSubstr("no answer in 0.1 s: waited for memory/orv/result to be "
                                         "written after command 0x104 (event) in /"));
  host_->signal(SIGCONT);
  EXPECT_TRUE(orv_test::eventually([&] { return logged("orv_handler(): key") == commands + 2; }));
  EXPECT_EQ(keys_handled(), before);
  EXPECT_EQ(shown(*ask(camera_, key_press)), ran);
  EXPECT_EQ(keys_handled(), before + 1);
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
  struct waiting {
    GMainLoop* loop;
    std::vector<std::string>* replies;
  } until{g_main_loop_new(nullptr, FALSE), &replies};
  const auto end = [](gpointer data) -> gboolean {
    const auto* one = static_cast<waiting*>(data);
    if (one->replies->size() == 10) {
      g_main_loop_quit(one->loop);
    }
    return G_SOURCE_CONTINUE;
  };
  const guint timer = g_timeout_add(2, end, &until);
  g_main_loop_run(until.loop);
  g_source_remove(timer);
  g_main_loop_unref(until.loop);
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
  orv_send(camera_.get(), &key_press, 5000, note_text, nullptr);
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
    within.reset(orv_ask(camera, &key_press, 5000));
    opened.reset(orv_camera_open(nullptr, nullptr));
  };
  orv_send(camera, &key_press, 5000, wait, nullptr);
  EXPECT_TRUE(run_until([] { return within != nullptr; }));
  EXPECT_EQ(shown(*within), shown(ORV_NOT_RUN, ORV_WHY_IN_CALLBACK));
  EXPECT_TRUE(opened) << "opening waits for no callback";
  within.reset();
  opened.reset();
}

TEST_F(ClientTest, EndsWhatIsInFlightWhenItIsClosed) {
  const long before = keys_handled();
  host_->signal(SIGSTOP);
  std::vector<std::string> replies;
  orv_send(camera_.get(), &key_press, 5000, note, &replies);
  orv_send(camera_.get(), &key_press, 5000, note, &replies);
  run_until([] { return orv_test::number_at(VCONFKEY_ORV_COMMAND) == ORV_COMMAND_EVENT; }, 1000);
  camera_.reset();
  EXPECT_THAT(replies, ElementsAre(shown(ORV_MAY_HAVE_RUN, ORV_WHY_CLOSED), closed));
  host_->signal(SIGCONT);
  camera_.reset(orv_camera_open(nullptr, nullptr));
  EXPECT_EQ(shown(*ask(camera_, orv_identity_request())), ran);
  EXPECT_EQ(keys_handled(), before) << "the first one was sent and not withdrawn";
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
  orv_send(within.camera, &key_press, 5000, close, &within);
  orv_send(within.camera, &key_press, 5000, note, &replies);
  EXPECT_TRUE(run_until([&] { return replies.size() == 2; }));
  EXPECT_THAT(replies, ElementsAre(ran, closed));
}

TEST_F(ClientTest, EndsInTimeWhileAnotherProcessHasTheTurn) {
  const background other{[]() -> int {
    const std::string path = orv_test::store_directory() + "/.orv-tools";
    const int file = open(path.c_str(), O_RDWR);
    struct flock turn {};
    turn.l_type = F_WRLCK;
    turn.l_len = 1;
    fcntl(file, F_OFD_SETLKW, &turn);
    return pause();
  }};
  reply_handle last;
  ASSERT_TRUE(orv_test::eventually([&] {
    last = ask(camera_, orv_memory_request(), 50);
    return last->outcome == ORV_NOT_RUN;
  }));
  EXPECT_EQ(shown(*last), shown(ORV_NOT_RUN, ORV_WHY_BUSY));
  EXPECT_EQ(last->message, "another orvctl has been busy on " + orv_test::store_directory() +
                               " for 0.05 s; try again");
  other.signal(SIGKILL);
  EXPECT_EQ(shown(*ask(camera_, orv_memory_request())), ran) << "its turn ends with it";
}

TEST_F(ClientTest, SaysWhatIsWrongWithARequest) {
  EXPECT_EQ(shown(*ask(camera_, orv_memory_request(), 0)), shown(ORV_NOT_RUN, ORV_WHY_BAD_REQUEST));
  EXPECT_EQ(shown(*ask(camera_, orv_touch_request(ORV_TOUCH_PRESS, 0, -32769))),
            shown(ORV_NOT_RUN, ORV_WHY_BAD_REQUEST));
  EXPECT_EQ(shown(*ask(camera_, {0x999, {}, nullptr}, 50)), unanswered);
  const reply_handle well = ask(camera_, orv_health_request());
  EXPECT_EQ(well->result, -1) << "the application does not run here";
  EXPECT_STREQ(well->message, "the agent answered -1");
}

}  // namespace
