#include "tools/worker_pool.h"

#include <utility>

namespace corvex_cli {

WorkerPool::WorkerPool(int threads) {
  for (int i = 0; threads > 1 && i < threads; ++i) {
    threads_.emplace_back([this] { work(); });
  }
}

WorkerPool::~WorkerPool() {
  {
    std::lock_guard<std::mutex> lock(mutex_);
    stopping_ = true;
    tasks_.clear();
  }
  taskReady_.notify_all();
  for (std::thread& thread : threads_) {
    thread.join();
  }
}

void WorkerPool::submit(std::function<void()> task) {
  if (threads_.empty()) {
    task();
    return;
  }
  {
    std::lock_guard<std::mutex> lock(mutex_);
    tasks_.push_back(std::move(task));
  }
  taskReady_.notify_one();
}

bool WorkerPool::waitFor(std::chrono::milliseconds timeout) {
  std::unique_lock<std::mutex> lock(mutex_);
  bool const done =
      idle_.wait_for(lock, timeout, [this] { return tasks_.empty() && running_ == 0; });
  if (failure_) {
    std::rethrow_exception(std::exchange(failure_, nullptr));
  }
  return done;
}

void WorkerPool::work() {
  std::unique_lock<std::mutex> lock(mutex_);
  while (true) {
    taskReady_.wait(lock, [this] { return stopping_ || !tasks_.empty(); });
    if (stopping_) {
      return;
    }
    std::function<void()> task = std::move(tasks_.front());
    tasks_.pop_front();
    ++running_;
    lock.unlock();
    try {
      task();
    } catch (...) {
      lock.lock();
      if (!failure_) {
        failure_ = std::current_exception();
      }
      lock.unlock();
    }
    lock.lock();
    --running_;
    if (tasks_.empty() && running_ == 0) {
      idle_.notify_all();
    }
  }
}

}  // namespace corvex_cli
