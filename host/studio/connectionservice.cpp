#include "host/studio/connectionservice.h"

#include <stdexcept>

#include "host/runtime/eventloop.h"

namespace Blockara {
namespace connections {

Listener::~Listener() { disconnectAll(); }

void Listener::disconnectAll() {
  for (auto& weak : incoming)
    if (auto state = weak.lock()) state->targetAlive = false;
  incoming.clear();
}

void NamedThread::deliver(std::function<void()> fn) const {
  auto& loop = blockara::EventLoop::instance();
  if (loop.isMainThread())
    fn();
  else
    loop.post(std::move(fn));
}

ConnectionService& ConnectionService::instance() {
  static ConnectionService service;
  return service;
}

ConnectionService::ConnectionService() : numeria(std::make_shared<NamedThread>("Numeria")) {}

std::shared_ptr<const NamedThread> ConnectionService::getNamedThread(const std::string& name) {
  if (name != "Numeria") throw std::invalid_argument("no thread named \"" + name + "\"");
  return numeria;
}

}  // namespace connections
}  // namespace Blockara
