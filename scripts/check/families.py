"""The families of the library, their units, and which unit may use which other one."""

UNITS = {
    "diagnostics": ["profiler", "trace_file", "problem_alert"],
    "messageloop": ["message_wait", "thread_message_hook", "windowless_timer"],
    "com": ["guid", "registration_free", "variant_safe_array", "activex", "digit_control"],
    "imaging": ["buffer", "png_thread", "screen_capture", "dib", "static_bitmap", "image_list"],
    "text": ["text_helpers", "apply_to_files", "test_object_id", "tip_name"],
    "windowtools": ["hwnd_table", "gui_tools", "tree_iterators", "combo_list_utils"],
    "controls": ["numeric_formatting", "numeric_edit_box", "button_menu", "bitmap_button", "step_manager"],
    "dialogs": ["task_dialog", "wizard_dialog"],
    "testing": ["code_place", "counting_object", "dialog_driver", "fault_observer", "message_pump", "resource_balance",
                "task_dialog_driver", "watchdog"],
}

# The families that are headers only: nothing of them is in the DLL, nor in the gallery.
HEADER_ONLY = {"testing"}

# Units are independent of each other, but for these.
USES = {
    "com/registration_free": {"com/guid", "text/apply_to_files"},
    "imaging/png_thread": {"imaging/buffer"},
    "imaging/image_list": {"imaging/dib"},
    "controls/bitmap_button": {"imaging/dib", "controls/button_menu"},
    "controls/numeric_edit_box": {"controls/numeric_formatting"},
    "testing/fault_observer": {"testing/code_place"},
    "testing/resource_balance": {"testing/counting_object"},
    "testing/task_dialog_driver": {"testing/dialog_driver"},
    "testing/watchdog": {"testing/code_place", "testing/dialog_driver"},
}

# The units that may use each companion library.
COMPANIONS = {
    "bzbase": {"imaging/png_thread", "imaging/screen_capture", "text/text_helpers", "windowtools/hwnd_table"},
    "rqgfx": {"imaging/png_thread", "imaging/screen_capture"},
    "pvwnd": {"imaging/screen_capture"},
    "wbzframe": {"controls/bitmap_button"},
    "qzutils": {"controls/numeric_formatting"},
    "neutralfmt": {"controls/numeric_formatting"},
}

# The exported headers that need no type of Windows: plain C++.
PLAIN_HEADERS = {"diagnostics/profiler", "diagnostics/trace_file"}
