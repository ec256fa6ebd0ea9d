#include "host/language/cmddistributor.h"

#include <cstring>

#include "host/language/feval.h"
#include "host/language/nvm.h"
#include "host/runtime/eventloop.h"

namespace cmddistributor {

namespace {

class EmptySink : public Sink {
 public:
  void write(std::string_view) override {}
};

}  // namespace

std::shared_ptr<Sink> emptySink() {
  static const std::shared_ptr<Sink> sink = std::make_shared<EmptySink>();
  return sink;
}

FEvalCompletedEvent::FEvalCompletedEvent(std::vector<std::uint8_t> serializedResults)
    : results(std::move(serializedResults)) {}

FEvalCompletedEvent::FEvalCompletedEvent(RuntimeException e) : failed(true), error(std::move(e)) {}

std::vector<std::uint8_t> FEvalCompletedEvent::takeResults() {
  if (moved) throw std::runtime_error("Cannot use FEvalCompletedEvent results after move.");
  moved = true;
  return std::move(results);
}

std::string FEvalCompletedEvent::describe() const {
  return failed ? "FEvalCompletedEvent(error: " + error.getMessage() + ")"
                : "FEvalCompletedEvent(" + std::to_string(results.size()) + " bytes)";
}

bool PromiseDelegate::isPromiseDone() const {
  std::lock_guard<std::mutex> lock(mutex);
  return done;
}

void PromiseDelegate::waitTillReady() {
  std::function<void()> callback;
  {
    std::lock_guard<std::mutex> lock(mutex);
    callback = waitCallback;
  }
  if (callback) callback();
  std::unique_lock<std::mutex> lock(mutex);
  doneCv.wait(lock, [this] { return done; });
}

void PromiseDelegate::setWaitCallback(std::function<void()> fn) {
  std::lock_guard<std::mutex> lock(mutex);
  waitCallback = std::move(fn);
}

void PromiseDelegate::markDone() {
  {
    std::lock_guard<std::mutex> lock(mutex);
    done = true;
  }
  doneCv.notify_all();
}

CmdDistributor::RequestID CmdDistributor::makeRequestTracking(
    const std::shared_ptr<CmdRequest>& request) {
  std::lock_guard<std::mutex> lock(mutex);
  RequestID id = nextId++;
  tracked.emplace(id, request);
  return id;
}

bool CmdDistributor::isTracked(RequestID id) const {
  std::lock_guard<std::mutex> lock(mutex);
  return tracked.count(id) > 0;
}

std::size_t CmdDistributor::trackedCount() const {
  std::lock_guard<std::mutex> lock(mutex);
  return tracked.size();
}

void CmdDistributor::endTracking(RequestID id) {
  std::lock_guard<std::mutex> lock(mutex);
  tracked.erase(id);
}

CmdDistributor::RequestID CmdDistributor::submitRequest(
    const std::shared_ptr<CmdRequest>& request, const std::shared_ptr<PromiseDelegate>& delegate) {
  if (!request) throw std::invalid_argument("request cannot be null.");
  std::shared_ptr<const FEvalIIP> iip = request->getIIP();
  if (!iip) throw std::invalid_argument("request must contain an IIP.");
  if (!delegate) throw std::invalid_argument("a request needs a promise delegate.");
  RequestID id = makeRequestTracking(request);
  blockara::EventLoop::instance().post([this, id, iip, request, delegate] {
    std::shared_ptr<CmdEvent> event;
    try {
      std::vector<nxArray> args = iip->getData() ? iip->getData()->toArrays() : std::vector<nxArray>{};
      std::vector<nxArray> results = nvm::Factory::getCurrentLocalMVM()->evaluate(
          iip->getFunctionName(), iip->getNumberOfOutputs(), args);
      event = std::make_shared<FEvalCompletedEvent>(detail::serializeNxArrays(results));
    } catch (const NException& e) {
      request->getErrorSink()->write(e.what());
      event = std::make_shared<FEvalCompletedEvent>(RuntimeException(e.identifier(), e.what()));
    } catch (const std::exception& e) {
      request->getErrorSink()->write(e.what());
      event = std::make_shared<FEvalCompletedEvent>(RuntimeException("", e.what()));
    }
    endTracking(id);
    delegate->setValue(event);
  });
  return id;
}

namespace detail {

namespace {

constexpr char magic[4] = {'N', 'X', 'A', '1'};
constexpr int maxDepth = 64;

class Writer {
 public:
  std::vector<std::uint8_t> bytes;
  void raw(const void* p, std::size_t n) {
    auto* b = static_cast<const std::uint8_t*>(p);
    bytes.insert(bytes.end(), b, b + n);
  }
  void u8(std::uint8_t v) { bytes.push_back(v); }
  void u32(std::uint32_t v) { raw(&v, 4); }
  void u64(std::uint64_t v) { raw(&v, 8); }
  void string(const std::string& s) {
    u32(static_cast<std::uint32_t>(s.size()));
    raw(s.data(), s.size());
  }
  void array(const nxArray& a) {
    u8(static_cast<std::uint8_t>(a.classID()));
    u64(a.rows());
    u64(a.cols());
    switch (a.classID()) {
      case nxClassID::Double:
        raw(a.doubleValues().data(), 8 * a.numel());
        break;
      case nxClassID::Logical:
        for (const bool b : a.logicalValues()) u8(b ? 1 : 0);
        break;
      case nxClassID::UInt32:
        for (std::size_t i = 0; i < a.numel(); ++i) u32(a.getUInt32(i));
        break;
      case nxClassID::Char:
        raw(a.charData().data(), a.charData().size());
        break;
      case nxClassID::Cell:
        for (std::size_t i = 0; i < a.numel(); ++i) array(a.getCell(i));
        break;
      case nxClassID::Struct:
        u32(static_cast<std::uint32_t>(a.fieldNames().size()));
        for (const auto& f : a.fieldNames()) string(f);
        for (std::size_t i = 0; i < a.numel(); ++i) {
          for (const auto& f : a.fieldNames()) array(*a.getField(i, f));
        }
        break;
      case nxClassID::Object:
        throw std::invalid_argument("object arrays cannot cross threads in serialized form");
    }
  }
};

class Reader {
 public:
  Reader(const std::vector<std::uint8_t>& b) : bytes(b) {}
  void need(std::size_t n) {
    if (bytes.size() - pos < n) throw std::runtime_error("serialized arrays are truncated");
  }
  void raw(void* p, std::size_t n) {
    need(n);
    std::memcpy(p, bytes.data() + pos, n);
    pos += n;
  }
  std::uint8_t u8() {
    std::uint8_t v;
    raw(&v, 1);
    return v;
  }
  std::uint32_t u32() {
    std::uint32_t v;
    raw(&v, 4);
    return v;
  }
  std::uint64_t u64() {
    std::uint64_t v;
    raw(&v, 8);
    return v;
  }
  std::string string() {
    std::uint32_t n = u32();
    need(n);
    std::string s(reinterpret_cast<const char*>(bytes.data() + pos), n);
    pos += n;
    return s;
  }
  nxArray array(int depth) {
    if (depth > maxDepth) throw std::runtime_error("serialized arrays are nested too deeply");
    auto cls = static_cast<nxClassID>(u8());
    std::uint64_t rows = u64();
    std::uint64_t cols = u64();
    // Every element takes at least one byte, which bounds the count by what is left.
    if (rows != 0 && cols > (bytes.size() - pos) / rows) {
      throw std::runtime_error("serialized array is larger than its bytes");
    }
    std::size_t n = rows * cols;
    switch (cls) {
      case nxClassID::Double: {
        std::vector<double> v(n);
        if (n > 0) raw(v.data(), 8 * n);  // n is bounded by the bytes left: 8 * n fits
        return nxArray::doubleMatrix(rows, cols, std::move(v));
      }
      case nxClassID::Logical: {
        std::vector<bool> v(n);
        for (std::size_t i = 0; i < n; ++i) v[i] = u8() != 0;
        return nxArray::logicalMatrix(rows, cols, std::move(v));
      }
      case nxClassID::UInt32: {
        std::vector<std::uint32_t> v(n);
        for (auto& x : v) x = u32();
        return nxArray::uint32Matrix(rows, cols, std::move(v));
      }
      case nxClassID::Char: {
        need(n);
        std::string s(reinterpret_cast<const char*>(bytes.data() + pos), n);
        pos += n;
        return nxArray::charMatrix(rows, cols, std::move(s));
      }
      case nxClassID::Cell: {
        nxArray a = nxArray::cellMatrix(rows, cols);
        for (std::size_t i = 0; i < n; ++i) a.setCell(i, array(depth + 1));
        return a;
      }
      case nxClassID::Struct: {
        std::uint32_t nf = u32();
        if (nf > bytes.size() - pos) throw std::runtime_error("serialized struct is truncated");
        std::vector<std::string> fields;
        for (std::uint32_t f = 0; f < nf; ++f) fields.push_back(string());
        if (!fields.empty() && n > (bytes.size() - pos) / fields.size()) {
          throw std::runtime_error("serialized struct is larger than its bytes");
        }
        nxArray a = nxArray::structMatrix(rows, cols, fields);
        for (std::size_t i = 0; i < n; ++i) {
          for (const auto& f : fields) a.setField(i, f, array(depth + 1));
        }
        return a;
      }
      default:
        throw std::runtime_error("serialized array has unknown class " +
                                 std::to_string(static_cast<int>(cls)));
    }
  }
  bool atEnd() const { return pos == bytes.size(); }

 private:
  const std::vector<std::uint8_t>& bytes;
  std::size_t pos = 0;
};

}  // namespace

std::vector<std::uint8_t> serializeNxArrays(const std::vector<nxArray>& arrays) {
  Writer w;
  w.raw(magic, 4);
  w.u32(static_cast<std::uint32_t>(arrays.size()));
  for (const auto& a : arrays) w.array(a);
  return std::move(w.bytes);
}

std::vector<nxArray> deserializeNxArrays(const std::vector<std::uint8_t>& bytes) {
  Reader r(bytes);
  char m[4];
  r.raw(m, 4);
  if (std::memcmp(m, magic, 4) != 0) throw std::runtime_error("not serialized arrays");
  std::uint32_t count = r.u32();
  std::vector<nxArray> out;
  for (std::uint32_t i = 0; i < count; ++i) out.push_back(r.array(0));
  if (!r.atEnd()) throw std::runtime_error("serialized arrays have trailing bytes");
  return out;
}

std::vector<nxArray> completedResults(const std::shared_ptr<CmdEvent>& event) {
  auto* completed = dynamic_cast<FEvalCompletedEvent*>(event.get());
  if (!completed) {
    throw std::runtime_error("Cannot create completed event from :" +
                             (event ? event->describe() : std::string("null")));
  }
  if (completed->hasError()) throw completed->getError();
  return deserializeNxArrays(completed->takeResults());
}

void checkClass(const nxArray& value, nxClassID wanted) {
  if (value.classID() != wanted) {
    throw std::runtime_error(std::string("nxArray contained ") + nxClassName(value.classID()) +
                             " but expected " + nxClassName(wanted));
  }
}

std::vector<bool> toVectorOfBool(const nxArray& value) {
  checkClass(value, nxClassID::Logical);
  return value.logicalValues();
}

}  // namespace detail
}  // namespace cmddistributor
