#pragma once

// Requests to evaluate a host-language function, posted from any thread, evaluated on the main
// thread by the event loop, and completing a future there.

#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "host/language/nxarray.h"

namespace cmddistributor {

/// The stream identifier of a request: the mode in which it is evaluated.
using IqmStreamID = int;

/// Where a request's output or error text goes. Implementations are thread-safe.
class Sink {
 public:
  virtual ~Sink() = default;
  virtual void write(std::string_view text) = 0;
};
/// A sink that discards everything.
std::shared_ptr<Sink> emptySink();

/// The host-language error of an evaluation, as the waiting side receives it. Any thread.
class RuntimeException : public std::runtime_error {
 public:
  RuntimeException(std::string identifier, const std::string& message)
      : std::runtime_error(message), id(std::move(identifier)) {}
  /// The error's message.
  std::string getMessage() const { return what(); }
  /// The error's message identifier, empty when it had none.
  const std::string& getIdentifier() const { return id; }

 private:
  std::string id;
};

/// The arguments of a request, held by value until the main thread takes them. Immutable once
/// posted; any thread.
class FEvalOpaqueData {
 public:
  virtual ~FEvalOpaqueData() = default;
  /// The arguments as arrays. Called on the main thread.
  virtual std::vector<nxArray> toArrays() const = 0;
};

/// Arguments that are arrays already.
class FEvalArrayData : public FEvalOpaqueData {
 public:
  explicit FEvalArrayData(std::vector<nxArray> args) : args(std::move(args)) {}
  std::vector<nxArray> toArrays() const override { return args; }

 private:
  std::vector<nxArray> args;
};

/// The payload of a request: function name, count of results, arguments, stream.
class FEvalIIP {
 public:
  FEvalIIP(std::string functionName, int nlhs, std::shared_ptr<const FEvalOpaqueData> data,
           IqmStreamID streamId)
      : name(std::move(functionName)), count(nlhs), payload(std::move(data)), stream(streamId) {}
  const std::string& getFunctionName() const { return name; }
  int getNumberOfOutputs() const { return count; }
  const std::shared_ptr<const FEvalOpaqueData>& getData() const { return payload; }
  IqmStreamID getStreamID() const { return stream; }

 private:
  std::string name;
  int count;
  std::shared_ptr<const FEvalOpaqueData> payload;
  IqmStreamID stream;
};

/// A request. Derived requests may carry their payload by overriding getIIP.
class CmdRequest {
 public:
  CmdRequest(IqmStreamID streamId, std::shared_ptr<Sink> outputSink,
             std::shared_ptr<Sink> errorSink, std::shared_ptr<const FEvalIIP> iip = nullptr)
      : stream(streamId), out(std::move(outputSink)), err(std::move(errorSink)),
        payload(std::move(iip)) {}
  virtual ~CmdRequest() = default;
  CmdRequest(const CmdRequest&) = delete;
  CmdRequest& operator=(const CmdRequest&) = delete;

  virtual std::shared_ptr<const FEvalIIP> getIIP() const { return payload; }
  const std::shared_ptr<Sink>& getOutputSink() const { return out; }
  const std::shared_ptr<Sink>& getErrorSink() const { return err; }
  IqmStreamID getStreamID() const { return stream; }

 private:
  IqmStreamID stream;
  std::shared_ptr<Sink> out;
  std::shared_ptr<Sink> err;
  std::shared_ptr<const FEvalIIP> payload;
};

/// An answer of the virtual machine.
class CmdEvent {
 public:
  virtual ~CmdEvent() = default;
  /// A short description for error texts.
  virtual std::string describe() const = 0;
};

/// The answer to an evaluation: serialized results, or the error. The results can be taken once.
class FEvalCompletedEvent : public CmdEvent {
 public:
  explicit FEvalCompletedEvent(std::vector<std::uint8_t> serializedResults);
  explicit FEvalCompletedEvent(RuntimeException error);

  bool hasError() const { return failed; }
  /// The error (meaningful when hasError()).
  const RuntimeException& getError() const { return error; }
  /// Moves the serialized results out. Throws std::runtime_error "Cannot use FEvalCompletedEvent
  /// results after move." on a second call.
  std::vector<std::uint8_t> takeResults();
  std::string describe() const override;

 private:
  bool failed = false;
  bool moved = false;
  std::vector<std::uint8_t> results;
  RuntimeException error{"", ""};
};

/// The other end of a future. Completed once, by setValue or setException, on the main thread.
/// Thread contract: every operation may be called from any thread; `mutex` guards `done` and
/// `waitCallback`.
class PromiseDelegate {
 public:
  PromiseDelegate() = default;
  virtual ~PromiseDelegate() = default;
  PromiseDelegate(const PromiseDelegate&) = delete;
  PromiseDelegate& operator=(const PromiseDelegate&) = delete;

  /// True once completed.
  bool isPromiseDone() const;
  /// Calls the wait callback (if any) once, then blocks until completed. Never call it on the
  /// main thread for a request that the main thread has yet to evaluate.
  void waitTillReady();
  /// Runs `fn` at the start of waitTillReady.
  void setWaitCallback(std::function<void()> fn);
  /// Completes with the machine's answer (result extraction errors complete it exceptionally).
  virtual void setValue(const std::shared_ptr<CmdEvent>& event) = 0;
  /// Completes with an exception.
  virtual void setException(std::exception_ptr error) = 0;

 protected:
  void markDone();

 private:
  mutable std::mutex mutex;
  std::condition_variable doneCv;
  bool done = false;                  // guarded by mutex
  std::function<void()> waitCallback;  // guarded by mutex
};

/// A promise delegate of result type R; `extract` turns the completed event into the result and
/// throws what the evaluation raised.
template <class R>
class PromiseDelegateT : public PromiseDelegate {
 public:
  using Extractor = std::function<R(const std::shared_ptr<CmdEvent>&)>;
  explicit PromiseDelegateT(Extractor extract) : extractor(std::move(extract)) {}

  /// The future; may be taken once (std::future_error after).
  std::future<R> getFuture() { return promise.get_future(); }

  void setValue(const std::shared_ptr<CmdEvent>& event) override {
    try {
      if constexpr (std::is_void_v<R>) {
        extractor(event);
        promise.set_value();
      } else {
        promise.set_value(extractor(event));
      }
    } catch (...) {
      promise.set_exception(std::current_exception());
    }
    markDone();
  }
  void setException(std::exception_ptr error) override {
    promise.set_exception(error);
    markDone();
  }

 private:
  Extractor extractor;
  std::promise<R> promise;
};

/// Hands requests to the main thread and tracks them until they complete. Any thread; `mutex`
/// guards `tracked` and `nextId`.
class CmdDistributor {
 public:
  using RequestID = std::uint64_t;

  CmdDistributor() = default;
  CmdDistributor(const CmdDistributor&) = delete;
  CmdDistributor& operator=(const CmdDistributor&) = delete;

  /// Starts tracking a request; returns its identifier.
  RequestID makeRequestTracking(const std::shared_ptr<CmdRequest>& request);
  /// Posts the request to the main thread's event loop. There, at the next pump, its function is
  /// evaluated through the virtual machine, the results serialized into an FEvalCompletedEvent (or
  /// the error caught into one), `delegate->setValue` called and the tracking ended.
  /// Throws std::invalid_argument "request cannot be null." or "request must contain an IIP.";
  /// returns the tracking identifier.
  RequestID submitRequest(const std::shared_ptr<CmdRequest>& request,
                          const std::shared_ptr<PromiseDelegate>& delegate);
  /// True while the request is tracked (posted and not yet completed).
  bool isTracked(RequestID id) const;
  /// How many requests are tracked.
  std::size_t trackedCount() const;

 private:
  void endTracking(RequestID id);

  mutable std::mutex mutex;
  std::map<RequestID, std::weak_ptr<CmdRequest>> tracked;  // guarded by mutex
  RequestID nextId = 1;                                     // guarded by mutex
};

/// Ties a future to its tracked request. Any thread.
class VariadicTaskReference {
 public:
  VariadicTaskReference(CmdDistributor& distributor, CmdDistributor::RequestID id)
      : distributor(&distributor), requestId(id) {}
  CmdDistributor::RequestID id() const { return requestId; }
  /// True once the request is no longer tracked.
  bool isDone() const { return !distributor->isTracked(requestId); }

 private:
  CmdDistributor* distributor;
  CmdDistributor::RequestID requestId;
};

namespace detail {
/// The host's serialized form of arrays (numbers, characters, cells, structs; not objects).
/// Serializing an object array throws std::invalid_argument. Any thread.
std::vector<std::uint8_t> serializeNxArrays(const std::vector<nxArray>& arrays);
/// The reverse. Throws std::runtime_error on malformed bytes. Any thread.
std::vector<nxArray> deserializeNxArrays(const std::vector<std::uint8_t>& bytes);

/// For extractors: checks that `event` is an FEvalCompletedEvent (else std::runtime_error
/// "Cannot create completed event from :" + description), rethrows its error as a
/// RuntimeException, takes and deserializes its results.
std::vector<nxArray> completedResults(const std::shared_ptr<CmdEvent>& event);
/// Throws std::runtime_error "nxArray contained <found> but expected <wanted>" on a class
/// mismatch.
void checkClass(const nxArray& value, nxClassID wanted);
/// A logical (or empty) array as a vector of bool, after checkClass.
std::vector<bool> toVectorOfBool(const nxArray& value);
}  // namespace detail

}  // namespace cmddistributor
