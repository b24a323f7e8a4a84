// ThreadSanitizer asks for this where it watches.

extern "C" const char* __tsan_default_suppressions();

extern "C" const char* __tsan_default_suppressions() {
    // The sanitizer doesn't see the counts of references to an exception, which the C++ library keeps in code
    // of its own: the last of the threads that a failed send passes through frees the exception after the
    // others have let go of it.
    return "race:std::__exception_ptr::exception_ptr::_M_release\n"
           "race:web::websockets::client::websocket_exception::~websocket_exception\n";
}
