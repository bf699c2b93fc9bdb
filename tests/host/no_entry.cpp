// A loadable library without MP_GetFactory: the host must refuse it cleanly.
extern "C" __attribute__((visibility("default"))) int kx_not_an_entry() { return 0; }
