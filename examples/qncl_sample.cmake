# The README's first command ends here: qncl converts the shipped CP1252 sample to UTF-8, shows
# the text and prints the MD5 digest of the result, which must be the one the sample's UTF-8 form
# is known to have. Run with -DQNCL=<the built qncl> -DSAMPLE=<the sample> -DOUTPUT=<a file>.
set(EXPECTED_MD5 418acc5ab0070648519fc4ae5b47327d)

execute_process(COMMAND "${QNCL}" convert --from CP1252 --to UTF-8 "${SAMPLE}" "${OUTPUT}"
                RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "qncl convert failed with status ${status}")
endif()
file(READ "${OUTPUT}" text)
message("qncl convert --from CP1252 --to UTF-8 sample-cp1252.txt:\n${text}")

execute_process(COMMAND "${QNCL}" md5 "${OUTPUT}" RESULT_VARIABLE status OUTPUT_VARIABLE line)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "qncl md5 failed with status ${status}")
endif()
message("qncl md5 of the UTF-8 text:\n${line}")
string(SUBSTRING "${line}" 0 32 digest)
if(NOT digest STREQUAL EXPECTED_MD5)
    message(FATAL_ERROR "the UTF-8 text has MD5 ${digest}, not ${EXPECTED_MD5}")
endif()
