#include "frame/client.h"

#include "frame/messages.h"
#include "vlfn98/client.h"

namespace frame {

Outcome openQuietly(vldb98::Store &store, int32_t client) {
  const ZelkResult opened = vlfn98::HoleMandantenDaten(store, client);
  if (opened > 0) return {opened};
  return {opened, resources::kDoesNotExist, "Mandant"};
}

ZelkResult openClient(const ThreadContext &context, vldb98::Store &store, int32_t client) {
  return finish(context, openQuietly(store, client));
}

} // namespace frame
