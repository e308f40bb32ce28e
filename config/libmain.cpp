// The hooks that run when the library is loaded and unloaded. There is nothing to do in either; they stand here as the
// firmware's libraries all have them.

namespace
{

__attribute__((constructor)) void NyxConfig_ctor() {}

__attribute__((destructor)) void NyxConfig_dtor() {}

} // namespace
