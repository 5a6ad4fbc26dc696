find_package(RapidJSON REQUIRED)
find_package(nlohmann_json REQUIRED)
target_include_directories(${name} SYSTEM PRIVATE ${RAPIDJSON_INCLUDE_DIRS})
set(peers nlohmann_json::nlohmann_json)
