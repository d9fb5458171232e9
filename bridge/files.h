#pragma once

#include "frame/host_types.h"
#include "platform/foundation/cf_url.h"
#include "platform/foundation/url.h"

struct FSRef;

// Between host folder items, of files that may not exist yet, and file URLs. File names cross in decomposed form. Nil
// for nothing, and for what has no existing parent folder.

// Owned by the caller.
CFURLRef MakeCFURLfromFolderItem(REALfolderItem item);
// Autoreleased.
NSURL NewNSURLfile(REALfolderItem item);

// A new folder item for the caller. A name beyond 255 UTF-16 units is cut.
REALfolderItem CFURL2RBFile(CFURLRef url);
REALfolderItem NSURLRBFile(NSURL url);
REALfolderItem REALFolderItemFromFSRef(const FSRef& ref);

// The URL's absolute string, of any URL.
REALstring NSURLRB(NSURL url);
