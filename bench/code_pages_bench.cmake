find_package(ICU REQUIRED COMPONENTS uc)
set(peers ICU::uc)
