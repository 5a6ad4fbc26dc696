find_package(Qt5Core REQUIRED)
set(peers Qt5::Core)
