#include "frame/signature.h"

namespace frame {

int resultNameId(const Export &self, ZelkResult result) {
  if (result < resources::kLeastResult || result > resources::kGreatestResult) return 0;
  if (self.fetch && (result == 1 || result == 0)) return resources::kKeinDatensatz - result;
  if (self.dialog && result == 0) return resources::kAbbruch;
  if (self.companion != resources::kNoCompanion && result == -1) return self.companion;
  return resources::nameId(result);
}

} // namespace frame
