#ifndef CORVEX_TOOLS_WORKER_POOL_H_
#define CORVEX_TOOLS_WORKER_POOL_H_

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace corvex_cli {

// Runs tasks on a fixed number of threads, in the order they were submitted. With fewer than
// two threads every task runs at once on the submitting thread.
class WorkerPool {
 public:
  explicit WorkerPool(int threads);
  // Drops the tasks not yet started and waits for the running ones.
  ~WorkerPool();
  WorkerPool(WorkerPool const&) = delete;
  WorkerPool& operator=(WorkerPool const&) = delete;

  void submit(std::function<void()> task);
  // Waits at most timeout for every submitted task to finish; true when they have. Rethrows
  // the first exception a task threw.
  bool waitFor(std::chrono::milliseconds timeout);

 private:
  void work();

  std::mutex mutex_;
  std::condition_variable taskReady_;
  std::condition_variable idle_;
  std::deque<std::function<void()>> tasks_;
  size_t running_ = 0;
  bool stopping_ = false;
  std::exception_ptr failure_;
  std::vector<std::thread> threads_;
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_WORKER_POOL_H_
