#pragma once
// Registers the host records that the module carries in variants, queued calls and model roles under the
// names the host and the module use for them. Safe to call any number of times.

namespace newsReader {

void registerMetaTypes();

} // namespace newsReader
