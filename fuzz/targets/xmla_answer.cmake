qel_fuzz(xmla_answer targets/xmla_answer.cpp qel_platform_xmla)
