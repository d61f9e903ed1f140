#include "support/KilledWriter.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <stdexcept>

namespace quillet::testing {

int killWriterAfter(int atLeast, const std::function<void(int)>& writeOne) {
  int reports[2];
  if (pipe(reports) != 0) throw std::runtime_error("killWriterAfter: no pipe");
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("killWriterAfter: no fork");
  if (child == 0) {
    close(reports[0]);
    for (int32_t i = 0;; ++i) {
      writeOne(i);
      if (write(reports[1], &i, sizeof i) != sizeof i) _exit(1);
    }
  }
  close(reports[1]);
  int reported = 0;
  int32_t index = 0;
  while (reported < atLeast && read(reports[0], &index, sizeof index) == sizeof index) ++reported;
  kill(child, SIGKILL);
  // Reports written before the kill landed are still in the pipe.
  while (read(reports[0], &index, sizeof index) == sizeof index) ++reported;
  close(reports[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (!WIFSIGNALED(status)) throw std::runtime_error("killWriterAfter: the writer ended on its own");
  return reported;
}

}  // namespace quillet::testing
