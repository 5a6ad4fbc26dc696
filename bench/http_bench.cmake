find_package(Boost REQUIRED)
find_package(CURL REQUIRED)
find_package(Threads REQUIRED)
set(peers Boost::boost CURL::libcurl Threads::Threads)
