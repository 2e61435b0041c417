#include "front/driver.h"

int main(int argc, char** argv) {
  return run(argc, argv);
}
