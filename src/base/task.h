#pragma once

#include <coroutine>
#include <exception>
#include <list>
#include <memory>
#include <optional>
#include <utility>

/// Flows that wait for the chip read from top to bottom as coroutines.
///
/// A Task starts when it is awaited and belongs to who holds it: destroying a Task that waits destroys the
/// whole chain below it, and whatever it waited for no longer resumes it. Everything runs on the thread of
/// one Scheduler.
namespace qv5123 {

namespace detail {

struct TaskPromiseBase {
  std::coroutine_handle<> continuation;
  std::exception_ptr failure;

  struct FinalAwaiter {
    bool await_ready() const noexcept { return false; }
    template <class Promise>
    std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> self) const noexcept {
      auto& promise = self.promise();
      if (promise.continuation) return promise.continuation;
      // Nobody is left to hear of it.
      if (promise.failure) std::terminate();
      return std::noop_coroutine();
    }
    void await_resume() const noexcept {}
  };

  std::suspend_always initial_suspend() const noexcept { return {}; }
  FinalAwaiter final_suspend() const noexcept { return {}; }
  void unhandled_exception() { failure = std::current_exception(); }
};

template <class T>
struct TaskPromise : TaskPromiseBase {
  std::optional<T> value;
  template <class U>
  void return_value(U&& result) {
    value.emplace(std::forward<U>(result));
  }
  T take() { return std::move(*value); }
};

template <>
struct TaskPromise<void> : TaskPromiseBase {
  void return_void() const {}
  void take() const {}
};

}  // namespace detail

template <class T = void>
class [[nodiscard]] Task {
 public:
  struct promise_type : detail::TaskPromise<T> {
    Task get_return_object() { return Task(std::coroutine_handle<promise_type>::from_promise(*this)); }
  };

  Task() = default;
  Task(Task&& other) noexcept : handle_(std::exchange(other.handle_, {})) {}
  Task& operator=(Task&& other) noexcept {
    if (this != &other) {
      reset();
      handle_ = std::exchange(other.handle_, {});
    }
    return *this;
  }
  ~Task() { reset(); }

  auto operator co_await() && {
    struct Awaiter {
      std::coroutine_handle<promise_type> handle;
      bool await_ready() const { return false; }
      std::coroutine_handle<> await_suspend(std::coroutine_handle<> continuation) {
        handle.promise().continuation = continuation;
        return handle;
      }
      T await_resume() {
        if (handle.promise().failure) std::rethrow_exception(handle.promise().failure);
        return handle.promise().take();
      }
    };
    return Awaiter{handle_};
  }

 private:
  friend class Flow;
  explicit Task(std::coroutine_handle<promise_type> handle) : handle_(handle) {}
  void reset() {
    if (handle_) std::exchange(handle_, {}).destroy();
  }
  std::coroutine_handle<promise_type> handle_;
};

/// Runs a Task from outside any coroutine and owns it. A Flow must not be cancelled, restarted or destroyed
/// from within the very flow that it runs.
class Flow {
 public:
  Flow() = default;
  explicit Flow(Task<> task) { start(std::move(task)); }
  Flow(Flow&&) = default;
  Flow& operator=(Flow&&) = default;

  /// Cancels what runs and runs `task` until it first waits.
  void start(Task<> task) {
    task_ = std::move(task);
    task_.handle_.resume();
  }
  bool running() const { return task_.handle_ && !task_.handle_.done(); }
  void cancel() { task_ = Task<>(); }

 private:
  Task<> task_;
};

/// Any number of flows that run beside each other and end by themselves or with their owner.
class FlowSet {
 public:
  void spawn(Task<> task) {
    flows_.remove_if([](const Flow& flow) { return !flow.running(); });
    flows_.emplace_back();
    flows_.back().start(std::move(task));
  }
  bool running() const {
    for (const Flow& flow : flows_) {
      if (flow.running()) return true;
    }
    return false;
  }
  void cancel() { flows_.clear(); }

 private:
  std::list<Flow> flows_;
};

/// Something that will have a value once. Awaiting it waits for that; it may also be dropped unawaited.
template <class T>
class Pending {
 public:
  struct State {
    std::optional<T> value;
    std::coroutine_handle<> waiter;
    bool dropped = false;
  };

  explicit Pending(std::shared_ptr<State> state) : state_(std::move(state)) {}
  Pending(Pending&&) noexcept = default;
  Pending& operator=(Pending&&) = delete;
  ~Pending() {
    if (!state_) return;
    state_->waiter = {};
    state_->dropped = true;
  }

  bool await_ready() const { return state_->value.has_value(); }
  void await_suspend(std::coroutine_handle<> waiter) { state_->waiter = waiter; }
  T await_resume() { return std::move(*state_->value); }

 private:
  std::shared_ptr<State> state_;
};

/// The other end of a Pending: whoever holds a copy may set its value, once, on the scheduler's thread.
template <class T>
class Resolver {
 public:
  Pending<T> pending() const { return Pending<T>(state_); }
  /// Whether whoever waited, or might have, no longer does.
  bool dropped() const { return state_->dropped; }
  void resolve(T value) const {
    if (state_->value) return;
    state_->value.emplace(std::move(value));
    if (auto waiter = std::exchange(state_->waiter, {})) waiter.resume();
  }

 private:
  std::shared_ptr<typename Pending<T>::State> state_ = std::make_shared<typename Pending<T>::State>();
};

}  // namespace qv5123
