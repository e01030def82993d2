#include "vantu/pickers/h5_file_restrictions.h"

namespace vantu {

H5FileRestrictions H5FileRestrictions::bind(const Dict& data) {
  H5FileRestrictions restrictions;
  restrictions.maxFileSize = data.getInt("maxLengthPerFile");
  restrictions.maxNumberOfFilesAllowed = data.getInt("maxNumberOfFiles");
  restrictions.allowedExtensions = data.getStringArray("extensionsAllowed");
  return restrictions;
}

}  // namespace vantu
