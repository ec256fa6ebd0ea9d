#pragma once

namespace Performance {

/// Something the cooperative task manager can hold back for a while. The manager calls `onPause`
/// when it stops giving the object time and `onResume` when it gives time again; both default to
/// doing nothing.
///
/// Thread contract: main thread only.
class Pauseable {
 public:
  virtual ~Pauseable() = default;

  /// Main thread. Called once when the enclosing session is paused. Must not throw.
  virtual void onPause() {}

  /// Main thread. Called once when the enclosing session resumes. Must not throw.
  virtual void onResume() {}

 protected:
  Pauseable() = default;
  Pauseable(const Pauseable&) = default;
  Pauseable& operator=(const Pauseable&) = default;
};

}  // namespace Performance
