/// Counts how often this process asks the system to bring a file to the disk, and can keep it from doing so.
#pragma once

namespace bench {

/// Calls of fsync and fdatasync so far.
long syncCount();

/// While one lives, commits wait for no disk, on either side of a comparison.
class WithoutDurability {
public:
  WithoutDurability();
  ~WithoutDurability();
  WithoutDurability(const WithoutDurability &) = delete;
  WithoutDurability &operator=(const WithoutDurability &) = delete;
};

} // namespace bench
