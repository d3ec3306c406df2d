/// A stored posting in the records in which callers know it.
#pragma once

#include "records/records.h"
#include "zelk98/zelk98.h"

namespace frame {

/// Fills the head but for the client's number, the count of lines and the document's identifier.
void fillHead(ZELK_SPLITBUCHUNG &out, const vldb98::BATCHBUCHUNG &posting);

/// Fills a line. Amounts come in the currency of the posting and in internal form.
void fillLine(ZELK_TEILBUCHUNG &out, const vldb98::SPLIT &line);

} // namespace frame
