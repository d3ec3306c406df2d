/// A figure that the project holds itself to, and what was measured for it.
#pragma once

#include <string>
#include <vector>

namespace bench {

enum class Bound { AtMost, AtLeast };

struct Figure {
  std::string what;
  double value;
  Bound bound;
  double limit;

  bool reached() const { return bound == Bound::AtMost ? value <= limit : value >= limit; }
};

using Figures = std::vector<Figure>;

// Each measures its part of them.
Figures storeFigures(int argc, char **argv);
Figures postingFigures();
Figures splitFigures();
Figures processFigures();
Figures batchFigures();
Figures openItemFigures();
Figures evaluationFigures();
Figures serverFigures();

} // namespace bench
