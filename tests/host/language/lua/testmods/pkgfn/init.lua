return { run = function(x) return "init:" .. x end }
