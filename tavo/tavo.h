// The whole public face of the core.
#pragma once
