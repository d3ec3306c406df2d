/// The verbs of zelkctl. Each returns the exit code of the program.
#pragma once

#include <cstdint>
#include <string>

namespace zelkctl {

constexpr int kDone = 0;
constexpr int kRefused = 1; ///< something was refused, and said so; what was not refused is done
constexpr int kFailed = 2;  ///< nothing could be done, or not to its end

// Below the exports: the stand-ins for the accounting program.
int provision(const std::string &directory);
int createClient(const std::string &folder);

// Everything else calls the exported functions and nothing else.
int importPostings(int32_t client, int32_t batch, const std::string &file);
int listClients();
int listBatches(int32_t client);
int showBatch(int32_t client, int32_t batch);
int listAccounts(int32_t client, const std::string &kind, int32_t order, const std::string &from);
int showResultText(int32_t code);

/// Complains of a result of the library by its number, name and text, behind a text that says what was tried.
/// \return kFailed
int complainOf(const std::string &tried, int32_t result);

} // namespace zelkctl
