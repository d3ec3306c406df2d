#include "zelkctl/structure.h"

#include <map>

using vldb98::AUFBAU;

namespace zelkctl {
namespace {

constexpr int32_t kRoot = 1;

using Lines = std::map<int32_t, AUFBAU *>;

// Whether the line lies on a circle of parents. Lines that only lead to one are not to blame.
bool isOnCircle(const Lines &lines, const AUFBAU &line) {
  int32_t at = line.Vater;
  for (size_t steps = 0; steps < lines.size(); ++steps) {
    if (at == line.Nr) return true;
    const auto parent = lines.find(at);
    if (parent == lines.end()) return false;
    at = parent->second->Vater;
  }
  return false;
}

std::string problemOf(const Lines &lines, const AUFBAU &line) {
  const std::string number = std::to_string(line.Nr);
  if (line.Nr < kRoot) return "Nr muss mindestens 1 sein.";
  if (lines.at(line.Nr) != &line) return "Die Nr " + number + " steht schon in einer anderen Zeile.";
  if (line.Nr == kRoot)
    return line.Vater == 0 ? "" : "Die Zeile mit der Nr 1 ist die Wurzel und hat keinen Vater (Vater 0).";
  if (line.Vater == 0) return "Nur die Wurzel (Nr 1) hat den Vater 0; die Nr " + number + " wäre nicht zu erreichen.";
  if (line.Vater == line.Nr) return "Die Nr " + number + " ist ihr eigener Vater.";
  if (!lines.count(line.Vater)) return "Die Zeile " + std::to_string(line.Vater) + " (Vater) gibt es nicht.";
  if (isOnCircle(lines, line))
    return "Die Nr " + number + " ist nicht zu erreichen: ihre Väter führen im Kreis zu ihr zurück.";
  return "";
}

} // namespace

std::vector<StructureProblem> linkStructure(std::span<AUFBAU *const> lines) {
  std::vector<StructureProblem> problems;
  Lines byNumber, lastChild;
  for (AUFBAU *line : lines)
    byNumber.emplace(line->Nr, line);
  if (!lines.empty() && !byNumber.count(kRoot))
    problems.push_back({lines.size(), "Die Zeile mit der Nr 1, die Wurzel, fehlt."});
  for (size_t i = 0; i < lines.size(); ++i)
    if (std::string text = problemOf(byNumber, *lines[i]); !text.empty()) problems.push_back({i, text});
  if (!problems.empty()) return problems;
  for (AUFBAU *line : lines) {
    if (line->Nr == kRoot) continue;
    AUFBAU *&last = lastChild[line->Vater];
    (last ? last->Naechste : byNumber.at(line->Vater)->Kind) = line->Nr;
    last = line;
  }
  return problems;
}

} // namespace zelkctl
