// The life of GDI+ in this process.
#ifndef FRAMEWORK_GDI_PLUS_H
#define FRAMEWORK_GDI_PLUS_H

namespace framework::gdi_plus {

// Users are counted; one that comes does not start GDI+ yet, since it may come from within DllMain.
void add_user() noexcept;
// The last user that goes shuts GDI+ down.
void remove_user() noexcept;

// False where GDI+ refuses. Does nothing where it is started.
bool start() noexcept;
void shut_down() noexcept;

}  // namespace framework::gdi_plus

#endif
