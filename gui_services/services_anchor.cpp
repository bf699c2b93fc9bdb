// Keeps the services library non-empty while it has no other sources.
namespace kx {
int servicesAnchor = 0;
}
