// Keeps the module library non-empty while no family is present.
namespace kx {
int modulesAnchor = 0;
}
