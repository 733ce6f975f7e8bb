// SPDX-License-Identifier: Apache-2.0

// What the XML reader calls of the system's libexpat, for a build without the system's development kit.
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

typedef char XML_Char;
typedef unsigned long XML_Size;
typedef unsigned char XML_Bool;
#define XML_TRUE ((XML_Bool)1)
#define XML_FALSE ((XML_Bool)0)
typedef struct XML_ParserStruct* XML_Parser;
enum XML_Status { XML_STATUS_ERROR = 0, XML_STATUS_OK = 1, XML_STATUS_SUSPENDED = 2 };
enum XML_Error { XML_ERROR_NONE = 0 };
typedef char XML_LChar;

typedef void (*XML_StartElementHandler)(void* data, const XML_Char* name, const XML_Char** attributes);
typedef void (*XML_EndElementHandler)(void* data, const XML_Char* name);
typedef void (*XML_CharacterDataHandler)(void* data, const XML_Char* characters, int length);
typedef void (*XML_EntityDeclHandler)(void* data, const XML_Char* name, int isParameter, const XML_Char* value,
                                      int length, const XML_Char* base, const XML_Char* systemId,
                                      const XML_Char* publicId, const XML_Char* notation);

XML_Parser XML_ParserCreate(const XML_Char* encoding);
void XML_ParserFree(XML_Parser parser);
void XML_SetUserData(XML_Parser parser, void* data);
void XML_SetElementHandler(XML_Parser parser, XML_StartElementHandler start, XML_EndElementHandler end);
void XML_SetCharacterDataHandler(XML_Parser parser, XML_CharacterDataHandler handler);
void XML_SetEntityDeclHandler(XML_Parser parser, XML_EntityDeclHandler handler);
enum XML_Status XML_Parse(XML_Parser parser, const char* bytes, int length, int isFinal);
enum XML_Status XML_StopParser(XML_Parser parser, XML_Bool resumable);
enum XML_Error XML_GetErrorCode(XML_Parser parser);
XML_Size XML_GetCurrentLineNumber(XML_Parser parser);
const XML_LChar* XML_ErrorString(enum XML_Error code);

#ifdef __cplusplus
}
#endif
