document.getElementById("app").textContent = "Guias: a página de ensaio do servidor";
