/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/*
 * The arguments and the result of every exported name, fixed. This file need not run: it compiles,
 * or a header has changed what callers rely on. It is linked, too, so that each name is found.
 */
#include <stddef.h>

#include "qvxcs/qvxcs.h"

/* The type of a name, and a pointer to it, which makes the linker look for it. */
#define IS(name, type)                                             \
  _Static_assert(_Generic(&(name), type : 1, default : 0), #name); \
  static __typeof__(&(name)) const name##IsThere __attribute__((used)) = &(name)

/* memory */
IS(PXTAllocMem, void* (*)(u32));
IS(PXTReAllocMem, void* (*)(void*, u32));
IS(PXTFreeMem, void (*)(void*));
IS(PXTGenericFree, void (*)(void*));
IS(SUPTFreeMem, void (*)(void*));

/* context_lock */
IS(PXTAllocContextLock, u32 (*)(void));
IS(PXTFreeContextLock, void (*)(u32));
IS(PXTLockContext, void (*)(u32));
IS(PXTUnLockContext, void (*)(u32));

/* export_context */
IS(PXTGetExportContext, void (*)(u32*));
IS(PXTSetExportContext, void (*)(u32*, u32*));
IS(PXTResetExportContext, void (*)(u32*));
IS(PXTSetProcessEnvironment, void (*)(void));
IS(SUPTBeforeForkForDaemon, void (*)(void));
IS(PXTEnableLongFileNames, s32 (*)(void));
IS(PXTDisableLongFileNames, s32 (*)(void));

/* uni_string */
IS(PXTUniStrlen, u32 (*)(const ustring*));
IS(PXTUniStrcpy, void (*)(ustring*, const ustring*));
IS(PXTUniStrncpy, void (*)(ustring*, const ustring*, u32));
IS(PXTUniStrcat, void (*)(ustring*, const ustring*));
IS(PXTUniStrncat, void (*)(ustring*, const ustring*, u32));
IS(PXTUniStrcmp, s32 (*)(const ustring*, const ustring*));
IS(PXTUniStrchr, ustring* (*)(const ustring*, ustring));
IS(PXTUniStrstr, ustring* (*)(const ustring*, const ustring*));
IS(PXTUniStrspn, u32 (*)(const ustring*, const ustring*));
IS(PXTUniStrcspn, u32 (*)(const ustring*, const ustring*));
IS(PXTUniStrtok, ustring* (*)(ustring*, const ustring*));
IS(PXTUniStrset, ustring* (*)(ustring*, ustring));
IS(PXTUniStrnset, void (*)(ustring*, ustring, u32));
IS(PXTUniStrrev, ustring* (*)(ustring*));

/* transcode */
IS(PXTUCS2StrToUTF8Str, u32 (*)(astring*, u32*, const ustring*));
IS(PXTUnicodeToASCII, u32 (*)(astring*, u32*, const ustring*));
IS(PXTUnicodeToLocal, u32 (*)(astring*, u32*, const ustring*));
IS(PXTUCS4StrToUTF8Str, u32 (*)(astring*, u32*, const u32*));
IS(PXTUTF8StrToUCS2Str, u32 (*)(ustring*, u32*, const astring*));
IS(PXTASCIIToUnicode, u32 (*)(ustring*, u32*, const astring*));
IS(PXTLocalToUnicode, u32 (*)(ustring*, u32*, const astring*));
IS(PXTUTF8StrToXMLUTF8Str, u32 (*)(astring*, u32*, booln*, const astring*));
IS(PXTUnicodeToEscape, u32 (*)(astring*, u32*, const ustring*));
IS(PXTGetXMLUTF8StrFromAStr, astring* (*)(const astring*, u32));
IS(PXTGetXMLUTF8StrFromUStr, astring* (*)(const ustring*, u32));
IS(PXTGetLocalLanguageID, u32 (*)(void));

/* number_text */
IS(PXTIsASCIIIntNum, u32 (*)(const astring*, u32));
IS(PXTIsASCIIHexNum, u32 (*)(const astring*, u32));
IS(PXTIsASCIIOctalNum, u32 (*)(const astring*));
IS(PXTIsASCIIAlpha, u32 (*)(const astring*));
IS(PXTIsASCIIAlphaNumeric, u32 (*)(const astring*));
IS(PXTIsASCIIAlphaNumericPlus, u32 (*)(const astring*, const astring*));
IS(PXTASCIIToSigned32, s32 (*)(const astring*));
IS(PXTASCIIToUnSigned32, u32 (*)(const astring*));
IS(PXTASCIIToSigned64, s64 (*)(const astring*));
IS(PXTASCIIToUnSigned64, u64 (*)(const astring*));
IS(PXTASCIIToDouble, d64 (*)(const astring*));
IS(PXTASCIIToBooln, booln (*)(const astring*));
IS(PXTASCIIToBoolnV, booln (*)(const astring*, u32*));
IS(PXTASCIIToUnSigned32VT, u32 (*)(const astring*, u32, u32*));
IS(PXTASCIIToSigned32VT, s32 (*)(const astring*, u32, u32*));
IS(PXTASCIIToUnSigned64VT, u64 (*)(const astring*, u32, u32*));
IS(PXTASCIIToSigned64VT, s64 (*)(const astring*, u32, u32*));
IS(PXTSigned32ToASCII, s32 (*)(astring*, s32));
IS(PXTUnSigned32ToASCII, s32 (*)(astring*, u32));
IS(PXTUnSigned64ToASCII, void (*)(astring*, u64));
IS(PXTSigned64ToASCII, void (*)(astring*, s64));
IS(PXTDoubleToASCII, void (*)(astring*, d64));
IS(PXTBoolnToASCII, void (*)(astring*, booln));
IS(PXTUniToSigned32, s32 (*)(const ustring*));
IS(PXTUniToUnSigned32, u32 (*)(const ustring*));
IS(PXTUniToSigned64, s64 (*)(const ustring*));
IS(PXTUniToUnSigned64, u64 (*)(const ustring*));
IS(PXTUniToDouble, d64 (*)(const ustring*));
IS(PXTUniDoubleToStr, s32 (*)(ustring*, u32*, d64, s32));
IS(PXTUniUnSigned32ToStr, s32 (*)(ustring*, u32*, u32, s32));
IS(PXTUniSigned32ToStr, s32 (*)(ustring*, u32*, s32, s32));
IS(PXTTimeToAStr, s32 (*)(astring*, time_t));
IS(PXTUniTimeToStr, s32 (*)(ustring*, u32*, time_t));
IS(PXTDSTFix, void (*)(time_t*));

/* grow_string */
IS(PXTSSAStrAlloc, astring* (*)(SSAStr*, u32));
IS(PXTSSUStrAlloc, ustring* (*)(SSUStr*, u32));
IS(PXTSSAStrFree, void (*)(SSAStr*));
IS(PXTSSUStrFree, void (*)(SSUStr*));
IS(PXTSSAStrCatAStr, astring* (*)(SSAStr*, const astring*));
IS(PXTSSUStrCatUStr, ustring* (*)(SSUStr*, const ustring*));
IS(PXTSSAStrCatUStr, astring* (*)(SSAStr*, const ustring*));
IS(PXTSSUStrCatAStr, ustring* (*)(SSUStr*, const astring*));
IS(PXTBufToUStr, s32 (*)(SSUStr*, const void*, u32, u32));
IS(PXTAppendDNode, void (*)(const astring*, const astring*, astring**));
IS(PXTRemoveDQuotesInStrArr, void (*)(u32, astring**));
IS(PXTAStrnicmp, s32 (*)(const astring*, const astring*, u32));
IS(PXTASCIIReplaceSubstr, u32 (*)(const astring*, const astring*, const astring*, u32*, astring*));

/* param_vector */
IS(PXTGetAStrParamName, astring* (*)(astring*));
IS(PXTGetUStrParamName, ustring* (*)(ustring*));
IS(PXTGetAStrParamValue, astring* (*)(astring*));
IS(PXTGetUStrParamValue, ustring* (*)(ustring*));
IS(PXTIsValidParam, u32 (*)(const astring*));
IS(PXTIsValidUParam, u32 (*)(const ustring*));
IS(PXTGetParamIndexByAStrName, s32 (*)(s32, astring**, const astring*, booln));
IS(PXTGetParamIndexByUStrName, s32 (*)(s32, ustring**, const ustring*, booln));
IS(PXTGetAStrParamValueByAStrName, astring* (*)(s32, astring**, const astring*, booln));
IS(PXTGetUStrParamValueByUStrName, ustring* (*)(s32, ustring**, const ustring*, booln));

/* list */
IS(PXTDLListAlloc, PXTDLList* (*)(void));
IS(PXTDLListFree, void (*)(PXTDLList*));
IS(PXTDLListEntryAlloc, PXTDLListEntry* (*)(u32));
IS(PXTDLListEntryFree, void (*)(PXTDLListEntry*));
IS(PXTDLListInsertEntryAtHead, void (*)(PXTDLList*, PXTDLListEntry*));
IS(PXTDLListInsertEntryAtTail, void (*)(PXTDLList*, PXTDLListEntry*));
IS(PXTDLListRemoveEntryAtHead, PXTDLListEntry* (*)(PXTDLList*));
IS(PXTDLListRemoveEntryAtTail, PXTDLListEntry* (*)(PXTDLList*));
IS(PXTDLListDeleteEntry, void (*)(PXTDLList*, PXTDLListEntry*));
IS(PXTDLListInsertKeyed, u32 (*)(PXTDLList*, PXTDLListEntry*, PXTDLListCompare));
IS(PXTDLListInsertOrdered, u32 (*)(PXTDLList*, PXTDLListEntry*, PXTDLListCompare));
IS(PXTSLListAlloc, PXTSLList* (*)(void));
IS(PXTSLListFree, void (*)(PXTSLList*));
IS(PXTSLListEntryAlloc, PXTSLListEntry* (*)(u32));
IS(PXTSLListEntryFree, void (*)(PXTSLListEntry*));
IS(PXTSLListInsertEntryAtHead, void (*)(PXTSLList*, PXTSLListEntry*));
IS(PXTSLListInsertEntryAtTail, void (*)(PXTSLList*, PXTSLListEntry*));
IS(PXTSLListRemoveEntryAtHead, PXTSLListEntry* (*)(PXTSLList*));
IS(PXTSLListRemoveEntryAtTail, PXTSLListEntry* (*)(PXTSLList*));
IS(PXTSLListDeleteEntry, void (*)(PXTSLList*, PXTSLListEntry*));
IS(PXTSLListInsertKeyed, u32 (*)(PXTSLList*, PXTSLListEntry*, PXTSLListCompare));
IS(PXTSLListInsertOrdered, u32 (*)(PXTSLList*, PXTSLListEntry*, PXTSLListCompare));

/* hash_id */
IS(PXTHashTableBytesNeeded, u32 (*)(u32));
IS(PXTClearHashTable, u32 (*)(void*, u32));
IS(PXTAcquireHashID, u32 (*)(void*, u32));
IS(PXTReleaseHashID, s32 (*)(void*, u32, u32));
IS(PXTVerifyHashID, s32 (*)(void*, u32, u32));
IS(PXTGetMaxInUseID, u32 (*)(void*, u32));
IS(PXTFindFirstHashID, u32 (*)(void*, u32, u32*, u32*));
IS(PXTFindNextHashID, u32 (*)(void*, u32, u32*, u32*));

/* xml_buffer */
IS(PXTXAllocBuf, void* (*)(u32, booln));
IS(PXTXFreeBuf, astring* (*)(void*));
IS(PXTXFreeBufGetContent, astring* (*)(void*));
IS(PXTXFreeBufContent, void (*)(astring*));
IS(PXTXBufCatNode, u32 (*)(void*, const astring*, const astring*, s32, const void*));
IS(PXTXBufCatBeginNode, u32 (*)(void*, const astring*, const astring*));
IS(PXTXBufCatEndNode, u32 (*)(void*, const astring*));
IS(PXTXBufCatEmptyNode, u32 (*)(void*, const astring*, const astring*));

/* xml_log */
IS(PXTForceXMLLogExists, u32 (*)(const astring*, const astring*, const astring*));
IS(PXTClearXMLLog, u32 (*)(const astring*, const astring*, const astring*));
IS(PXTAppendToXMLLog, u32 (*)(const astring*, u16, u32, const astring*, const astring*,
                              const astring*, const void*, u32, u32));
IS(PXTGetBackupXMLLogPathFileName, u32 (*)(const astring*, astring*, u32*));
IS(PXTCmdGetXMLLogContent, astring* (*)(const astring*));

/* command_log */
IS(PXTGetCmdLogPathFileName, astring* (*)(void));
IS(PXTAppendToCmdLog, u32 (*)(s32, const astring*, const astring*, const astring*, u16));
IS(PXTClearCmdLog, u32 (*)(const astring*, const astring*));
IS(PXTGetCmdLogSize, u32 (*)(u32*));
IS(PXTGetCmdLogMaxSize, u32 (*)(u32*));
IS(PXTSetCmdLogMaxSize, u32 (*)(s32));

/* os_log */
IS(PXTAppendToOSLog, u32 (*)(u16, u32, const ustring*, const ustring*));
IS(PXTClearOSLog, u32 (*)(void));

/* ini_file */
IS(PXTReadINIPathFileValue, u32 (*)(const astring*, const astring*, s32, void*, u32*, const void*,
                                    u32, const astring*, booln));
IS(PXTReadINIFileValue, u32 (*)(const astring*, const astring*, s32, void*, u32*, const void*, u32,
                                const astring*, booln));
IS(PXTWriteINIPathFileValue,
   u32 (*)(const astring*, const astring*, s32, const void*, s32, const astring*, booln));
IS(PXTWriteINIFileValue,
   u32 (*)(const astring*, const astring*, s32, const void*, s32, const astring*, booln));

/* keyvalue */
IS(PXTCFGGetKeyValueEntries, PXTKeyValue* (*)(const astring*, u32*));
IS(PXTCFGInstGetKeyValueEntries, PXTKeyValue* (*)(const astring*, u32*));
IS(PXTCFGGetKeyValue, astring* (*)(const PXTKeyValue*, u32, const astring*, u32));
IS(PXTCFGFreeKeyValueEntries, void (*)(PXTKeyValue*, u32));
IS(PXTCFGSetKeyValue, u32 (*)(const astring*, const PXTKeyValue*, u32));
IS(PXTCFGInstSetKeyValue, u32 (*)(const astring*, const PXTKeyValue*, u32));

/* string_resource */
IS(PXTGetUnicodeStringFromIDPathFile, u32 (*)(u32, u32*, const astring*, ustring*, u32*));

/* file_util */
IS(PXTDeleteFile, u32 (*)(const astring*));
IS(PXTGetSizeOfFile, u32 (*)(const astring*, u32*));
IS(PXTGetTmpFile, u32 (*)(const astring*, astring*, u32*));
IS(PXTMkDir, u32 (*)(const astring*));
IS(PXTRmDir, u32 (*)(const astring*));

/* paths */
IS(PXTGetQVXInstallPath, astring* (*)(void));
IS(PXTGetRootInstallPath, astring* (*)(void));
IS(PXTGetProductIniPath, astring* (*)(void));
IS(PXTGetProductVarPath, astring* (*)(void));
IS(PXTGetQVXWWWRootPath, astring* (*)(void));
IS(PXTGetQVXXSLRootPath, astring* (*)(void));
IS(PXTGetQVXDownloadPath, astring* (*)(void));
IS(PXTGetQVXUploadPath, astring* (*)(void));
IS(PXTGetQVXCLIDocsPath, astring* (*)(void));
IS(PXTGetQVXWEBDocsPath, astring* (*)(void));
IS(PXTGetIWSTempDirPath, astring* (*)(void));
IS(PXTGetOEMINIPathFile, astring* (*)(const astring*, const astring*, const astring*));
IS(PXTCheckModularChassis, u32 (*)(void));
IS(PXTGetOEMADSchemaPrefix, astring* (*)(void));
IS(PXTGetLocaleNameAStr, astring* (*)(u32));
IS(PXTGetOSLocaleName, astring* (*)(void));
IS(PXTGetOSLanguage, astring* (*)(void));
IS(PXTGetOSCountry, astring* (*)(void));
IS(PXTGetHostNameAStr, astring* (*)(void));
IS(PXTWebServer, u32 (*)(u32, u32, s32*));

/* xsl_path */
IS(PXTGetXSLPathLocale,
   astring* (*)(const astring*, const astring*, const astring*, const astring*, u8, booln));

/* access */
IS(PXTOpenRolemapFile, u32 (*)(void));
IS(PXTGetRightsUsingRolemap, u32 (*)(void));
IS(PXTAuthenticateUser, u32 (*)(const ustring*, const ustring*, ustring*));
IS(PXTAuthorizeUser, u32 (*)(const ustring*, const ustring*));
IS(PXTADAuthenticateUser, s32 (*)(u32, u32, u32, u32, u32, u32, u32, u8, u32));
IS(PXTGetOSDomainList, void* (*)(void));
IS(PXTGetProcessRights, u32 (*)(void));
IS(PXTGetProcessUser, astring* (*)(void));
IS(PXTMaskProgramRights, u32 (*)(u32, const astring*, const astring*, u32*));
IS(pam_servicename, astring**);

/* ip_address */
IS(PXTGetComputerDomainName, astring* (*)(void));
IS(PXTGetIPHostName, u32 (*)(astring*, u32*));
IS(PXTUniGetIPHostName, u32 (*)(ustring*, u32*));
IS(PXTGetDNSSuffixNameName, u32 (*)(void*, u32));
IS(PXTValidateHostName, u32 (*)(const astring*));
IS(PXTGetSockType, u32 (*)(void));
IS(PXTGetLoopBack, const astring* (*)(void));
IS(PXTIsIPv4, u32 (*)(const astring*));
IS(PXTIsIPv6, u32 (*)(const astring*));
IS(PXTIsLinkLocal, u32 (*)(const astring*));
IS(PXTIPAddrASCIIToNetwork, u32 (*)(const astring*, void*, u32*));
IS(PXTIPAddrNetworkToASCII, u32 (*)(const void*, u32, astring*, s32*));
IS(PXTCheckIPEqual, u32 (*)(const astring*, const astring*));
IS(PXTGetIPAddrStrList, u32 (*)(const astring*, u32*, void*));
IS(PXTHostGetHostIPAddrList, astring* (*)(u32*));
IS(PXTMD5Hash, s32 (*)(const astring*, u8*));

/* thread */
IS(PXTThreadStart, s32 (*)(PXTThread*, PXTThreadEntry, u32));
IS(PXTThreadStop, s32 (*)(PXTThread*));

/* library */
IS(PXTLibLoad, u32 (*)(PXTLibrary*, const astring*));
IS(PXTLibLinkToExportFN, void* (*)(PXTLibrary*, const astring*));
IS(PXTLibUnLinkFromExportFN, u32 (*)(PXTLibrary*, const void*));
IS(PXTLibUnLoad, u32 (*)(PXTLibrary*));

/* shutdown */
IS(PXTOSShutdown, u32 (*)(u16, u16));
IS(PXTOSGetType, u32 (*)(void));

/* cli_value */
IS(PXTNVSASCIIToXVal, u32 (*)(const astring*, s32, void*));
IS(PXTNVSNVPValToXVal, u32 (*)(s32, astring**, const astring*, s32, void*));
IS(PXTNVSXValToASCII, astring* (*)(s32, const void*));
IS(PXTNVSUstrToAstrD, astring* (*)(const ustring*, const astring*, u32*));
IS(PXTNVSUstrToAstr, astring* (*)(const ustring*, u32*));
IS(PXTNVSAstrToUstrD, ustring* (*)(const astring*, const ustring*, u32*));
IS(PXTNVSAstrToUstr, ustring* (*)(const astring*, u32*));
IS(PXTNVSBufCatSetCmdParam,
   u32 (*)(void*, const astring*, const void*, const void*, const void*, s32));
IS(PXTNVSCatSMStatusNode, void (*)(void*, s32, const astring*));
IS(PXTNVSCMDHelp, astring* (*)(s32, astring**, const PXTCommand*, s32, PXTCommandFunction));

int main(void) { return pam_servicename != NULL ? 0 : 1; }
