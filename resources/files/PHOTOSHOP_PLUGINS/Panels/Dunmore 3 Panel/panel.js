"use strict";

const presets = ["Weiches Licht", "Nacht", "Silber", "Korn 400"];

for (const name of presets) {
  const button = document.createElement("button");
  button.textContent = name;
  button.addEventListener("click", () => window.cep?.process?.createProcess("dunmore", "--preset", name));
  document.getElementById("presets").append(button);
}
