return function(x) return "lone:" .. x end
