/// The part of this program that runs in the processes it starts.
#pragma once

namespace bench {

/// The first argument of such a process; workerMain gets those after it.
inline constexpr char kWorkerOption[] = "--worker";
int workerMain(char **arguments);

} // namespace bench
