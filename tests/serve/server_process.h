// A brixq serve process for the tests: started on a free port, read from its first line, stopped
// by a signal; and an HTTP client pointed at it.
#pragma once

#include <httplib.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

namespace brix::testing {

class ServerProcess {
 public:
  /// Starts `brixq serve --listen 127.0.0.1:0 ARGS...`, its standard error appended to
  /// `log_path`, and waits for its first line. A process that ends without one leaves `port` 0.
  ServerProcess(const std::vector<std::string>& args, const std::string& log_path) {
    int out[2];
    if (pipe(out) != 0) throw std::runtime_error("pipe");
    pid_ = fork();
    if (pid_ == 0) {
      dup2(out[1], STDOUT_FILENO);
      close(out[0]);
      std::FILE* log = std::fopen(log_path.c_str(), "a");
      if (log) dup2(fileno(log), STDERR_FILENO);
      std::vector<std::string> all = {BRIXQ_PATH, "serve", "--listen", "127.0.0.1:0"};
      all.insert(all.end(), args.begin(), args.end());
      std::vector<char*> argv;
      for (std::string& arg : all) argv.push_back(arg.data());
      argv.push_back(nullptr);
      execv(BRIXQ_PATH, argv.data());
      _exit(127);
    }
    close(out[1]);
    std::string line;
    char c;
    while (read(out[0], &c, 1) == 1 && c != '\n') line += c;
    close(out[0]);
    first_line_ = line;
    auto colon = line.rfind(':');
    if (line.starts_with("brixq serve: listening on http://") && colon != std::string::npos) {
      port_ = std::stoi(line.substr(colon + 1));
    }
  }
  ~ServerProcess() {
    if (pid_ > 0) Stop(SIGKILL);
  }
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;

  int port() const { return port_; }
  const std::string& first_line() const { return first_line_; }
  httplib::Client Client() const {
    httplib::Client client("127.0.0.1", port_);
    client.set_read_timeout(30);
    return client;
  }

  /// Sends `signal` and returns the exit status (128 + the signal when killed by it).
  int Stop(int signal = SIGTERM) {
    kill(pid_, signal);
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }

 private:
  pid_t pid_ = -1;
  int port_ = 0;
  std::string first_line_;
};

}  // namespace brix::testing
