// SPDX-License-Identifier: Apache-2.0
// How the main run loop calls a foreign event loop. Internal to the layer.
#pragma once

#include <atomic>
#include <limits>
#include <optional>

namespace havrin {
inline namespace platform {

/// A descriptor that is readable after a signal, and from a deadline on.
class HostDescriptor {
 public:
  /// Throws: std::system_error when the system has no more descriptors.
  HostDescriptor();
  HostDescriptor(const HostDescriptor&) = delete;
  HostDescriptor& operator=(const HostDescriptor&) = delete;

  [[nodiscard]] int descriptor() const { return both_.get(); }

  /// Makes it readable. Threads: any.
  void signal();
  /// Makes it readable no later than at `deadline`. Threads: main.
  void expect(double deadline);
  /// Forgets the signals and the deadline there were. Threads: main.
  void clear();
  /// Makes it readable at `deadline`, and at no other. Threads: main.
  void expectOnly(std::optional<double> deadline);

 private:
  static constexpr double kNever = std::numeric_limits<double>::infinity();

  // Closes what it holds; these live as long as the process unless the constructor fails half-way.
  class Descriptor {
   public:
    explicit Descriptor(int descriptor, const char* what);
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor();
    [[nodiscard]] int get() const { return descriptor_; }

   private:
    const int descriptor_;
  };

  void arm(double deadline);

  const Descriptor event_;
  const Descriptor timer_;
  const Descriptor both_;
  double armed_ = kNever;
};

}  // namespace platform
}  // namespace havrin
