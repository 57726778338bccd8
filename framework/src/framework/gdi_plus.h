// Start and shutdown of GDI+ in this process.
#ifndef FRAMEWORK_GDI_PLUS_H
#define FRAMEWORK_GDI_PLUS_H

namespace framework::gdi_plus {

// Counts users. Registration does not start GDI+: it may happen in DllMain.
void add_user() noexcept;
// The last user shuts GDI+ down.
void remove_user() noexcept;

// Starts GDI+ if it is not started. Returns false on failure.
bool start() noexcept;
void shut_down() noexcept;

}  // namespace framework::gdi_plus

#endif
