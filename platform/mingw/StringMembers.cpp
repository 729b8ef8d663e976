// What libstdc++ itself calls of its strings, for which the linker would take an object of 21 KiB.

#include <string>

template std::string::pointer std::string::_M_create(std::string::size_type&,
                                                     std::string::size_type);
template void std::string::_M_assign(const std::string&);
