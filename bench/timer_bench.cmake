find_package(Boost REQUIRED)
find_package(Threads REQUIRED)
set(peers Boost::boost Threads::Threads)
