#Sources and public headers of persistence /.
set(BRIX_PERSISTENCE_HEADERS persistence / ixml_prop_bag.h persistence /
    shared_xml_document.h persistence / xml_path_index.h persistence / xml_prop_bag.h)
    set(BRIX_PERSISTENCE_SOURCES persistence / bin_base64.cpp persistence /
        bin_base64.h persistence / shared_xml_document.cpp persistence /
        xml_path_index.cpp persistence / xml_prop_bag.cpp persistence /
        xml_prop_bag_errors.h persistence / xml_text_reader.cpp persistence /
        xml_text_reader.h persistence / xml_text_writer.cpp persistence /
        xml_text_writer.h persistence / xml_tree_walk.h)
