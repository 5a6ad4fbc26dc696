target_link_libraries(${folder}_tests PRIVATE zentavo::sql)
