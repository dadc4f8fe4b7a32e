// Linked into the programs of the sanitizer build that open a window, so that the leak checker tells our leaks from
// those of the libraries beneath. Nothing of src/ may be excused here.

extern "C" {

// The driver leaves lists behind when its library is unloaded. Once it is unloaded nobody knows any more whose they
// were, so it stays: its own globals then still hold them.
int dlclose(void*) {
    return 0;
}

const char* __lsan_default_suppressions() {
    // Lists of visuals and names of extensions that libGL asks for when a window is opened, and never gives back.
    return "leak:libX11.so\n";
}

const char* __asan_default_options() {
    // How the checker finds the thread-local memory of libraries that are loaded late rests on a C library that is
    // gone: now and then it reads a size that is none and falls ("Tracer caught signal 11").
    return "intercept_tls_get_addr=0";
}

const char* __lsan_default_options() {
    return "print_suppressions=0";
}

} // extern "C"
