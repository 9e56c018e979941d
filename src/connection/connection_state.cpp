#include "connection/connection_state.h"

std::optional<ConnectionConfig> ConnectionConfigCopy;

void ResetConnectionState() { ConnectionConfigCopy.reset(); }
