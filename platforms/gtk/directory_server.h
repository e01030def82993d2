#pragma once
// The directory server is part of the embedding API.
#include "vantu/gtk/directory_server.h"
