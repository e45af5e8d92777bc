# Writes the text file IN to OUT as one C++ raw string literal, for #include into a definition.
file(READ ${IN} text)
file(WRITE ${OUT} "R\"corvexpage(${text})corvexpage\"\n")
