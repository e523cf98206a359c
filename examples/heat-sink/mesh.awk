# Reads "name value" lines, lengths in metres, and writes what the deck of CalculiX includes: mesh.inp, the mesh of one
# fin, and flux.inp, the heat that enters it.
#
# One fin stands for all of them: a row of brick elements along its length, some through its thickness, and one across
# its width, along which nothing changes.
{ value[$1] = $2 }

END {
  nx = 60
  ny = 4
  dx = value["length"] / nx
  dy = value["thickness"] / ny
  mesh = "mesh.inp"
  print "*NODE, NSET=NALL" > mesh
  for (k = 0; k <= 1; k++) {
    for (j = 0; j <= ny; j++) {
      for (i = 0; i <= nx; i++) {
        printf "%d, %.12e, %.12e, %.12e\n", node(i, j, k), i * dx, j * dy, k * value["width"] > mesh
      }
    }
  }
  print "*ELEMENT, TYPE=C3D8, ELSET=EALL" > mesh
  for (j = 0; j < ny; j++) {
    for (i = 0; i < nx; i++) {
      printf "%d, %d, %d, %d, %d, %d, %d, %d, %d\n", element(i, j), \
             node(i, j, 0), node(i + 1, j, 0), node(i + 1, j + 1, 0), node(i, j + 1, 0), \
             node(i, j, 1), node(i + 1, j, 1), node(i + 1, j + 1, 1), node(i, j + 1, 1) > mesh
    }
  }
  print "*ELSET, ELSET=ROOT" > mesh
  for (j = 0; j < ny; j++) print element(0, j) > mesh
  print "*ELSET, ELSET=TIP" > mesh
  for (j = 0; j < ny; j++) print element(nx - 1, j) > mesh
  print "*ELSET, ELSET=LOWER" > mesh
  for (i = 0; i < nx; i++) print element(i, 0) > mesh
  print "*ELSET, ELSET=UPPER" > mesh
  for (i = 0; i < nx; i++) print element(i, ny - 1) > mesh
  print "*NSET, NSET=NROOT" > mesh
  for (k = 0; k <= 1; k++) for (j = 0; j <= ny; j++) print node(0, j, k) > mesh

  flux = value["power"] / (value["fins"] * value["thickness"] * value["width"])
  print "*DFLUX" > "flux.inp"
  printf "ROOT, S6, %.12e\n", flux > "flux.inp"
}

function node(i, j, k) { return k * (nx + 1) * (ny + 1) + j * (nx + 1) + i + 1 }

function element(i, j) { return j * nx + i + 1 }
