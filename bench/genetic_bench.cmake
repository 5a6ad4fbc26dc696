find_library(ga_library ga REQUIRED)
set(peers ${ga_library})
