# Clipping: records, parameter intervals, trimming against outlines and view boxes.
target_sources(vogebasic_objects PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/clip_records.cpp)
