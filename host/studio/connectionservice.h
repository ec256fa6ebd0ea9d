#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <typeinfo>
#include <vector>

namespace Blockara {
namespace connections {

class ConnectionState;

/// Base class of objects that receive events through typed connections. Destroying a listener
/// disables every connection that targets it, so that no event reaches a dead listener.
/// Main thread only.
class Listener {
 public:
  Listener() = default;
  virtual ~Listener();
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  /// Main thread. Disconnects every connection still made to this listener: none delivers to it
  /// again, whichever service owns it. Connections made afterwards work as usual.
  void disconnectAll();

 private:
  template <typename L, typename E>
  friend class TypedConnection;
  std::vector<std::weak_ptr<ConnectionState>> incoming;  // main thread only
};

/// A thread known by name on which connections deliver events.
class NamedThread {
 public:
  explicit NamedThread(std::string name) : threadName(std::move(name)) {}
  /// The thread's name.
  const std::string& name() const { return threadName; }
  /// Runs `fn` on this thread: at once when the caller is already on it, else posted to the
  /// main loop (`blockara::EventLoop`), which "Numeria", the main thread, runs. Any thread.
  void deliver(std::function<void()> fn) const;

 private:
  std::string threadName;
};

/// Shared state of one connection: whether it is enabled and whether its target still lives.
/// Main thread only.
class ConnectionState {
 public:
  bool enabled = false;
  bool targetAlive = true;
};

/// A connection from an event service to a listener's member function, delivered on a named
/// thread. Created disabled; `enable` starts delivery. Main thread only.
template <typename L, typename E>
class TypedConnection {
 public:
  using Target = void (L::*)(const E&);

  TypedConnection(L* listener, Target target, std::shared_ptr<const NamedThread> thread)
      : listener(listener), target(target), thread(std::move(thread)),
        state(std::make_shared<ConnectionState>()),
        debugName(std::string(typeid(L).name()) + "<-" + typeid(E).name()) {
    static_cast<Listener*>(listener)->incoming.push_back(state);
  }
  TypedConnection(const TypedConnection&) = delete;
  TypedConnection& operator=(const TypedConnection&) = delete;

  /// Starts delivery.
  void enable() { state->enabled = true; }
  /// Stops delivery.
  void disable() { state->enabled = false; }
  /// True while enabled and the listener lives.
  bool isActive() const { return state->enabled && state->targetAlive; }
  /// The debug name: the listener's and the event's type names.
  const std::string& getDebugName() const { return debugName; }

  /// Delivers `event` to the listener on the connection's thread, if active at delivery time.
  void deliver(const E& event) const {
    if (!isActive()) return;
    auto keep = state;
    L* to = listener;
    Target fn = target;
    thread->deliver([keep, to, fn, event] {
      if (keep->enabled && keep->targetAlive) (to->*fn)(event);
    });
  }

 private:
  L* listener;
  Target target;
  std::shared_ptr<const NamedThread> thread;
  std::shared_ptr<ConnectionState> state;
  std::string debugName;
};

/// A source of events of type E that typed connections listen to. Main thread only.
template <typename E>
class EventService {
 public:
  EventService() = default;
  EventService(const EventService&) = delete;
  EventService& operator=(const EventService&) = delete;

  /// Adds a connection to `listener`'s `target` delivered on `thread`; returns it disabled. The
  /// caller holds the connection service's global write lock. The service owns the connection.
  template <typename L>
  TypedConnection<L, E>* connect(L* listener, void (L::*target)(const E&),
                                 std::shared_ptr<const NamedThread> thread) {
    auto connection = std::make_shared<TypedConnection<L, E>>(listener, target, std::move(thread));
    TypedConnection<L, E>* raw = connection.get();
    connectionList.push_back([connection](const E& event) { connection->deliver(event); });
    owners.push_back(std::move(connection));
    return raw;
  }

  /// Delivers `event` through every connection, in connection order.
  void raise(const E& event) const {
    auto snapshot = connectionList;  // a delivery may add connections
    for (const auto& deliver : snapshot) deliver(event);
  }

  /// The number of connections made (enabled or not).
  std::size_t connectionCount() const { return connectionList.size(); }

 private:
  std::vector<std::function<void(const E&)>> connectionList;
  std::vector<std::shared_ptr<void>> owners;
};

/// The process-wide connection service: named threads and the global lock under which
/// connections are made. Main thread, except `globalWriteLock`, which any thread may take.
class ConnectionService {
 public:
  /// The process-wide service.
  static ConnectionService& instance();
  ConnectionService(const ConnectionService&) = delete;
  ConnectionService& operator=(const ConnectionService&) = delete;

  /// The named thread `name`. "Numeria" is the main thread. Throws std::invalid_argument for
  /// any other name.
  std::shared_ptr<const NamedThread> getNamedThread(const std::string& name);

  /// The lock to hold (exclusively) while making connections.
  std::shared_mutex& globalWriteLock() { return lock; }

 private:
  ConnectionService();
  std::shared_mutex lock;
  std::shared_ptr<const NamedThread> numeria;  // written once at construction
};

}  // namespace connections
}  // namespace Blockara
