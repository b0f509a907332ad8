#ifndef CMCFG_TESTS_SUPPORT_KILL_CHILD_H_
#define CMCFG_TESTS_SUPPORT_KILL_CHILD_H_

// The step the crash tests repeat: a child process writes and reports each
// finished write, and is killed with SIGKILL at a random instant.

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>
#include <vector>

namespace testing_support {

// What one killed child did.
struct KilledChild {
  bool forked = false;     // the pipe and the fork worked
  bool started = true;     // with a start report expected: it came, and was 0
  bool signalled = false;  // it died of the SIGKILL, not by itself
  std::vector<long> reports;  // the finished writes it reported, in order
};

// Forks a child that runs body(fd), which never returns and writes one long
// to fd per finished write (after a 0 first when `startReport`). The parent
// waits for that start report, and for the first write when `awaitFirst`,
// then lets the child run `wait` longer, kills it and reaps it.
template <typename Body>
KilledChild KillAfter(Body body, bool startReport, bool awaitFirst, std::chrono::microseconds wait) {
  KilledChild result;
  int fds[2];
  if (pipe(fds) != 0) return result;
  const pid_t child = fork();
  if (child == 0) {
    close(fds[0]);
    body(fds[1]);
  }
  close(fds[1]);
  auto next = [&](long* n) { return read(fds[0], n, sizeof(*n)) == sizeof(*n); };
  long n = -1;
  result.forked = child > 0;
  if (result.forked && startReport) result.started = next(&n) && n == 0;
  if (result.forked && result.started && awaitFirst && next(&n)) result.reports.push_back(n);
  if (result.forked && result.started) std::this_thread::sleep_for(wait);
  int status = 0;
  result.signalled = result.forked && kill(child, SIGKILL) == 0 && waitpid(child, &status, 0) == child &&
                     WIFSIGNALED(status);
  while (result.forked && next(&n)) result.reports.push_back(n);
  close(fds[0]);
  return result;
}

}  // namespace testing_support

#endif  // CMCFG_TESTS_SUPPORT_KILL_CHILD_H_
